#include "camera/library_text.h"

#include <QtTest>

extern "C" Q_DECL_EXPORT int stranger_takes_utf8()
{
    return 0;
}

extern "C" Q_DECL_EXPORT int friend_takes_utf8()
{
    return 1;
}

/// The encoding that a library takes is what the library says.
class TestLibraryText : public QObject
{
    Q_OBJECT

private slots:
    void libraryWithoutTheFunctionGetsLatin1()
    {
        QCOMPARE(zelvaro::libraryText(QStringLiteral("é\u043f"), "absent_takes_utf8"),
                 QByteArray("\xe9?"));
    }
    void libraryThatDeniesGetsLatin1()
    {
        QCOMPARE(zelvaro::libraryText(QStringLiteral("é\u043f"), "stranger_takes_utf8"),
                 QByteArray("\xe9?"));
    }
    void libraryThatAgreesGetsUtf8()
    {
        QCOMPARE(zelvaro::libraryText(QStringLiteral("é\u043f"), "friend_takes_utf8"),
                 QByteArray("\xc3\xa9\xd0\xbf"));
    }
};

QTEST_GUILESS_MAIN(TestLibraryText)
#include "tst_library_text.moc"
