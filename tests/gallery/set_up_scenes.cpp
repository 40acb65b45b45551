#include "app/main_form.h"
#include "tests/fakes/fake_cammgr.h"
#include "tests/fakes/fake_ndcp.h"
#include "tests/gallery/stage.h"
#include "ui/discovery/camera_set_up.h"
#include "ui/discovery/search_camera_form.h"
#include "ui/discovery/search_camera_list_form.h"
#include "ui/manager/motion_dialog.h"

#include <QListView>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QUuid>

#include <cstring>

namespace gallery {

namespace {

const char *const rooms[] = {"Front door", "Garage", "Garden", "Living room", "Driveway"};

ndcp_device device(int number)
{
    const QByteArray uid = QUuid::createUuidV5(QUuid(), QString::number(number))
                               .toString(QUuid::WithoutBraces)
                               .toLatin1();
    ndcp_device made = fake_ndcp::device(uid.toStdString(), rooms[number % std::size(rooms)],
                                         0xC0A80114u + unsigned(number), 80);
    std::strcpy(made.location, number % 2 == 0 ? "House" : "Yard");
    return made;
}

std::vector<ndcp_device> devices(int count)
{
    std::vector<ndcp_device> list;
    for (int i = 0; i < count; ++i)
        list.push_back(device(i));
    return list;
}

ndcp_device longDevice()
{
    ndcp_device made = device(1);
    std::strcpy(made.model, "Outdoor Dome 4000 Pro");
    std::strcpy(made.name, "Old stables, north side");
    std::strcpy(made.location, "Behind the kitchen garden");
    made.http_port = 30080;
    return made;
}

void search(Stage &stage)
{
    stage.click("frameButtons", "btnSetUp");
    stage.click("pageSearchCameraList", "btnSearch");
}

Scene searchPage(const QString &name, std::vector<ndcp_device> found, bool select = false)
{
    return {QStringLiteral("setup"), name, Scene::Kind::Page,
            [=](Stage &stage) {
                fake_ndcp::answerDiscover(0);
                fake_ndcp::setDevices(found);
                stage.open();
                search(stage);
                if (select)
                    stage.find<QTableView>("tableView")->selectRow(0);
                return Subject{&stage.form(), {}};
            }};
}

Scene picker(const QString &name, std::vector<ndcp_device> found)
{
    return {QStringLiteral("dialogs"), name, Scene::Kind::Dialog,
            [=](Stage &stage) {
                fake_ndcp::answerDiscover(0);
                fake_ndcp::setDevices(found);
                auto *dialog = stage.show<CSearchCameraForm>(&stage.open());
                auto *list = dialog->findChild<QListView *>(QStringLiteral("listCameraList"));
                auto *ok = dialog->findChild<QPushButton *>(QStringLiteral("btnOk"));
                if (!QTest::qWaitFor([=] { return ok->isEnabled(); }, 30000))
                    qFatal("the search does not end");
                list->setCurrentIndex(list->model()->index(1, 0));
                return Subject{dialog, {}};
            }};
}

Scene networkSetUp(const QString &name, const ndcp_device &record)
{
    return {QStringLiteral("dialogs"), name, Scene::Kind::Dialog,
            [=](Stage &stage) {
                stage.open();
                stage.click("frameButtons", "btnSetUp");
                stage.record() = record;
                auto *page = stage.find<CSearchCameraListForm>("pageSearchCameraList");
                return Subject{stage.show<CCameraSetUp>(page, &stage.record(),
                                                        CCameraSetUp::Configuration::Read),
                               {}};
            }};
}

ndcp_device fixedAddress()
{
    ndcp_device made = device(0);
    made.manual_ip = 1;
    made.mask = 0xFFFFFF00;
    made.gateway = 0xC0A80101;
    made.manual_dns = 1;
    made.dns1 = 0xC0A80101;
    made.dns2 = 0x09090909;
    std::strcpy(made.username, "admin");
    std::strcpy(made.password, "secret");
    return made;
}

Subject showMotion(Stage &stage)
{
    fake_cammgr::Script script;
    script.replies = [](const std::vector<std::string> &requests) {
        std::vector<std::string> replies;
        for (std::size_t window = 1; window <= requests.size(); ++window)
            replies.push_back("000 Success\nWINDOW=" + std::to_string(window) +
                              "\nENABLE=" + (window < 3 ? "1" : "0") +
                              "\nLEFT=120\nTOP=80\nRIGHT=520\nBOTTOM=400\nTHRESHOLD=60\n"
                              "SENSITIVITY=70\n");
        return replies;
    };
    fake_cammgr::setDefaults(script);
    stage.addCameras(1);
    stage.open();
    stage.connectAll();
    return {stage.show<Motion_Dialog>(&stage.form(), stage.camera(0)), {}};
}

} // namespace

QVector<Scene> setUpScenes()
{
    const ndcp_device automatic = device(2);
    return {
        {QStringLiteral("setup"), QStringLiteral("search-empty"), Scene::Kind::Page,
         [](Stage &stage) {
             stage.open();
             stage.click("frameButtons", "btnSetUp");
             return Subject{&stage.form(), {}};
         }},
        searchPage(QStringLiteral("search-one"), devices(1), true),
        searchPage(QStringLiteral("search-many"), devices(40)),
        searchPage(QStringLiteral("search-long-names"), {longDevice(), device(3)}, true),
        {QStringLiteral("dialogs"), QStringLiteral("picker-searching"), Scene::Kind::Waiting,
         [](Stage &stage) {
             return Subject{stage.show<CSearchCameraForm>(&stage.open()), {}};
         }},
        picker(QStringLiteral("picker-none"), {}),
        picker(QStringLiteral("picker"), devices(4)),
        picker(QStringLiteral("picker-many"), devices(40)),
        picker(QStringLiteral("picker-long-names"), {longDevice()}),
        networkSetUp(QStringLiteral("network-setup"), fixedAddress()),
        networkSetUp(QStringLiteral("network-setup-automatic"), automatic),
        {QStringLiteral("dialogs"), QStringLiteral("motion"), Scene::Kind::Dialog, showMotion},
    };
}

} // namespace gallery
