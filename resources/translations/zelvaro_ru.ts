<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ru_RU" sourcelanguage="en_US">
<context>
    <name>CAddButtonForm</name>
    <message>
        <source>Add a camera</source>
        <translation>Добавить камеру</translation>
    </message>
</context>
<context>
    <name>CAddCameraForm</name>
    <message>
        <source>Add Camera</source>
        <translation>Добавление камеры</translation>
    </message>
    <message>
        <source>UID or address</source>
        <translation>UID или адрес</translation>
    </message>
    <message>
        <source>Find cameras on this network</source>
        <translation>Найти камеры в этой сети</translation>
    </message>
    <message>
        <source>Discover</source>
        <translation>Обнаружить</translation>
    </message>
    <message>
        <source>User Name</source>
        <translation>Имя пользователя</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Пароль</translation>
    </message>
    <message>
        <source>Camera Name</source>
        <translation>Имя камеры</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Modify Camera</source>
        <translation>Изменение камеры</translation>
    </message>
    <message>
        <source>Please input UID.</source>
        <translation>Введите UID.</translation>
    </message>
    <message>
        <source>Please input user name.</source>
        <translation>Введите имя пользователя.</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
</context>
<context>
    <name>CAddressEdit</name>
    <message>
        <source>Part %1 of the address</source>
        <translation>Часть %1 адреса</translation>
    </message>
</context>
<context>
    <name>CCameraMgrFrame</name>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>Cannot add camera, 100 is maxnum.</source>
        <translation>Невозможно добавить камеру: допускается не более 100.</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Предупреждение</translation>
    </message>
    <message>
        <source>Delete camera?</source>
        <translation>Удалить камеру?</translation>
    </message>
    <message>
        <source>Reboot camera?</source>
        <translation>Перезагрузить камеру?</translation>
    </message>
    <message>
        <source>Please wait for reboot...</source>
        <translation>Выполняется перезагрузка, подождите...</translation>
    </message>
    <message>
        <source>info</source>
        <translation>Информация</translation>
    </message>
    <message>
        <source>Reboot success. Please wait a few minutes and re-connect.</source>
        <translation>Перезагрузка выполнена. Подождите несколько минут и подключитесь снова.</translation>
    </message>
    <message>
        <source>Reboot failed. Please wait a few minutes and re-try.</source>
        <translation>Не удалось выполнить перезагрузку. Подождите несколько минут и повторите попытку.</translation>
    </message>
</context>
<context>
    <name>CCameraMgrItemForm</name>
    <message>
        <source>Menu</source>
        <translation>Меню</translation>
    </message>
    <message>
        <source>Camera menu</source>
        <translation>Меню камеры</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Воспроизвести</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>Modify</source>
        <translation>Изменить</translation>
    </message>
    <message>
        <source>Invalid Password!</source>
        <translation>Неверный пароль!</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>Подключена</translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation>Не подключена</translation>
    </message>
    <message>
        <source>Not connected since %1</source>
        <translation>Не подключена с %1</translation>
    </message>
    <message>
        <source>The picture is of %1</source>
        <translation>Изображение от %1</translation>
    </message>
</context>
<context>
    <name>CCameraSetUp</name>
    <message>
        <source>Please wait for get configuration...</source>
        <translation>Получение конфигурации, подождите...</translation>
    </message>
    <message>
        <source>Please wait for set configuration...</source>
        <translation>Запись конфигурации, подождите...</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>Network error. Please wait a while and try again.</source>
        <translation>Ошибка сети. Подождите немного и повторите попытку.</translation>
    </message>
    <message>
        <source>Authenticate failed. Please check your user name or password.</source>
        <translation>Ошибка проверки подлинности. Проверьте имя пользователя и пароль.</translation>
    </message>
    <message>
        <source>Get configuration failed. Please wait a while and try again.</source>
        <translation>Не удалось получить конфигурацию. Подождите немного и повторите попытку.</translation>
    </message>
    <message>
        <source>Set configuration failed. Please check your configuration and try again.</source>
        <translation>Не удалось записать конфигурацию. Проверьте её и повторите попытку.</translation>
    </message>
</context>
<context>
    <name>CMainForm</name>
    <message>
        <source>Zelvaro</source>
        <translation>Zelvaro</translation>
    </message>
    <message>
        <source>Menu</source>
        <translation>Меню</translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation>Свернуть</translation>
    </message>
    <message>
        <source>Maximize</source>
        <translation>Развернуть</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Закрыть</translation>
    </message>
    <message>
        <source>Cameras (Alt+C)</source>
        <translation>Камеры (Alt+C)</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Камера</translation>
    </message>
    <message>
        <source>Several cameras side by side (Alt+M)</source>
        <translation>Несколько камер рядом (Alt+M)</translation>
    </message>
    <message>
        <source>MultiLive</source>
        <translation>Сетка</translation>
    </message>
    <message>
        <source>Recordings (Alt+V)</source>
        <translation>Записи (Alt+V)</translation>
    </message>
    <message>
        <source>Video</source>
        <translation>Видео</translation>
    </message>
    <message>
        <source>Photos (Alt+A)</source>
        <translation>Фото (Alt+A)</translation>
    </message>
    <message>
        <source>Album</source>
        <translation>Альбом</translation>
    </message>
    <message>
        <source>Find and set up cameras (Alt+S)</source>
        <translation>Поиск и настройка камер (Alt+S)</translation>
    </message>
    <message>
        <source>Setup</source>
        <translation>Настройка</translation>
    </message>
    <message>
        <source>Version 1.4 (Build 20180813)</source>
        <translation>Версия 1.4 (сборка 20180813)</translation>
    </message>
    <message>
        <source>Save Path...</source>
        <translation>Папка сохранения...</translation>
    </message>
    <message>
        <source>Selecte Path</source>
        <translation>Выбор папки</translation>
    </message>
    <message>
        <source>Alt+C</source>
        <translation>Alt+C</translation>
    </message>
    <message>
        <source>Alt+M</source>
        <translation>Alt+M</translation>
    </message>
    <message>
        <source>Alt+V</source>
        <translation>Alt+V</translation>
    </message>
    <message>
        <source>Alt+A</source>
        <translation>Alt+A</translation>
    </message>
    <message>
        <source>Alt+S</source>
        <translation>Alt+S</translation>
    </message>
    <message>
        <source>Restore</source>
        <translation>Восстановить</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>Путь</translation>
    </message>
    <message>
        <source>Nothing can be written to this folder. Please choose another one.</source>
        <translation>В эту папку нельзя ничего записать. Выберите другую.</translation>
    </message>
</context>
<context>
    <name>CMessageBox</name>
    <message>
        <source>Message</source>
        <translation>Сообщение</translation>
    </message>
    <message>
        <source>Icon</source>
        <translation>Значок</translation>
    </message>
    <message>
        <source>Message Text</source>
        <translation>Текст сообщения</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
</context>
<context>
    <name>CMultiLiveForm</name>
    <message>
        <source>Select cameras</source>
        <translation>Выбрать камеры</translation>
    </message>
    <message>
        <source>Snapshot</source>
        <translation>Снимок</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Запись</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Предупреждение</translation>
    </message>
    <message>
        <source>By changing view your recording will be stop.</source>
        <translation>При смене вида запись будет остановлена.</translation>
    </message>
    <message>
        <source>Hear this camera</source>
        <translation>Слушать эту камеру</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>Во весь экран</translation>
    </message>
    <message>
        <source>Nothing is heard: click a picture to hear its camera.</source>
        <translation>Звука нет: щёлкните картинку, чтобы слушать её камеру.</translation>
    </message>
    <message>
        <source>This camera sends no sound.</source>
        <translation>Эта камера не передаёт звук.</translation>
    </message>
</context>
<context>
    <name>CMultiLiveFrame</name>
    <message>
        <source>No camera is selected for this view.</source>
        <translation>Для этого вида не выбрана камера.</translation>
    </message>
</context>
<context>
    <name>CMultiLiveItemForm</name>
    <message>
        <source>Live picture</source>
        <translation>Изображение с камеры</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>Двойной щелчок или клавиша Esc переключает полноэкранный режим.</translation>
    </message>
    <message>
        <source>Camera Name</source>
        <translation>Имя камеры</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Идёт запись</translation>
    </message>
    <message>
        <source>not recorded</source>
        <translation>не пишется</translation>
    </message>
</context>
<context>
    <name>CPhotoMgrForm</name>
    <message>
        <source>Camera List</source>
        <translation>Список камер</translation>
    </message>
    <message>
        <source>Photos</source>
        <translation>Фото</translation>
    </message>
    <message>
        <source>Videos</source>
        <translation>Видео</translation>
    </message>
</context>
<context>
    <name>CPhotoMgrFrame</name>
    <message>
        <source>Warning</source>
        <translation>Предупреждение</translation>
    </message>
    <message>
        <source>Delete video?</source>
        <translation>Удалить видео?</translation>
    </message>
    <message>
        <source>Delete photo?</source>
        <translation>Удалить фото?</translation>
    </message>
    <message>
        <source>This camera has no recordings yet.</source>
        <translation>У этой камеры пока нет записей.</translation>
    </message>
    <message>
        <source>This camera has no photos yet.</source>
        <translation>У этой камеры пока нет фотографий.</translation>
    </message>
</context>
<context>
    <name>CPhotoMgrItemForm</name>
    <message>
        <source>Photo Name</source>
        <translation>Имя фото</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Воспроизвести</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Удалить</translation>
    </message>
</context>
<context>
    <name>CPlayCameraForm</name>
    <message>
        <source>Live picture</source>
        <translation>Изображение с камеры</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>Двойной щелчок или клавиша Esc переключает полноэкранный режим.</translation>
    </message>
    <message>
        <source>Camera Name</source>
        <translation>Имя камеры</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>Идёт запись</translation>
    </message>
    <message>
        <source>Snapshot</source>
        <translation>Снимок</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Запись</translation>
    </message>
    <message>
        <source>ZoomIn</source>
        <translation>Увеличить</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Увеличить</translation>
    </message>
    <message>
        <source>ZoomOut</source>
        <translation>Уменьшить</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Уменьшить</translation>
    </message>
    <message>
        <source>FullScreen</source>
        <translation>Во весь экран</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>Во весь экран</translation>
    </message>
    <message>
        <source>Talk</source>
        <translation>Говорить</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Назад</translation>
    </message>
    <message>
        <source>Talking does not work: there is no microphone.</source>
        <translation>Разговор невозможен: нет микрофона.</translation>
    </message>
    <message>
        <source>Talking does not work: the camera takes no sound.</source>
        <translation>Разговор невозможен: камера не принимает звук.</translation>
    </message>
    <message>
        <source>Talking does not work: the connection failed.</source>
        <translation>Разговор невозможен: не удалось подключиться.</translation>
    </message>
    <message>
        <source>not recorded</source>
        <translation>не пишется</translation>
    </message>
    <message>
        <source>This camera sends no sound.</source>
        <translation>Эта камера не передаёт звук.</translation>
    </message>
</context>
<context>
    <name>CPlayPhotoForm</name>
    <message>
        <source>Photo</source>
        <translation>Фото</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>Двойной щелчок или клавиша Esc переключает полноэкранный режим.</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Предыдущее</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Следующее</translation>
    </message>
    <message>
        <source>ZoomIn</source>
        <translation>Увеличить</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Увеличить</translation>
    </message>
    <message>
        <source>ZoomOut</source>
        <translation>Уменьшить</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Уменьшить</translation>
    </message>
    <message>
        <source>FullScreen</source>
        <translation>Во весь экран</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>Во весь экран</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Назад</translation>
    </message>
</context>
<context>
    <name>CPlayVideoForm</name>
    <message>
        <source>Video</source>
        <translation>Видео</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>Двойной щелчок или клавиша Esc переключает полноэкранный режим.</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>Предыдущее</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Воспроизвести</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>Следующее</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>Положение</translation>
    </message>
    <message>
        <source>ZoomIn</source>
        <translation>Увеличить</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Увеличить</translation>
    </message>
    <message>
        <source>ZoomOut</source>
        <translation>Уменьшить</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Уменьшить</translation>
    </message>
    <message>
        <source>FullScreen</source>
        <translation>Во весь экран</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>Во весь экран</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Удалить</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Назад</translation>
    </message>
    <message>
        <source>Recordings cannot be played: no back end of Phonon is installed.</source>
        <translation>Записи нельзя воспроизвести: не установлен модуль воспроизведения Phonon.</translation>
    </message>
    <message>
        <source>This recording cannot be played.</source>
        <translation>Эту запись невозможно воспроизвести.</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Пауза</translation>
    </message>
</context>
<context>
    <name>CSearchCameraForm</name>
    <message>
        <source>Searching...</source>
        <translation>Поиск...</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>Please select a camera.</source>
        <translation>Выберите камеру.</translation>
    </message>
    <message>
        <source>Cameras found: %1</source>
        <translation>Найдено камер: %1</translation>
    </message>
    <message>
        <source>The search cannot be started.</source>
        <translation>Не удаётся начать поиск.</translation>
    </message>
</context>
<context>
    <name>CSearchCameraListForm</name>
    <message>
        <source>Model</source>
        <translation>Модель</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Имя</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>Место</translation>
    </message>
    <message>
        <source>IP</source>
        <translation>IP</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>Порт</translation>
    </message>
    <message>
        <source>MAC</source>
        <translation>MAC</translation>
    </message>
    <message>
        <source>P2P UID</source>
        <translation>P2P UID</translation>
    </message>
    <message>
        <source>Please wait for search camera...</source>
        <translation>Поиск камер, подождите...</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>Please select a camera.</source>
        <translation>Выберите камеру.</translation>
    </message>
    <message>
        <source>Please wait for get onfiguration...</source>
        <translation>Получение конфигурации, подождите...</translation>
    </message>
    <message>
        <source>Press &quot;Search&quot; to find the cameras of this network.</source>
        <translation>Нажмите «Поиск», чтобы найти камеры этой сети.</translation>
    </message>
    <message>
        <source>The search cannot be started. Please wait a while and try again.</source>
        <translation>Не удаётся начать поиск. Подождите немного и повторите попытку.</translation>
    </message>
</context>
<context>
    <name>CSelectCameraForm</name>
    <message>
        <source>Select Camera</source>
        <translation>Выбор камеры</translation>
    </message>
</context>
<context>
    <name>CSelectCameraItemForm</name>
    <message>
        <source>Camera Name</source>
        <translation>Имя камеры</translation>
    </message>
    <message>
        <source>Selected</source>
        <translation>Выбрана</translation>
    </message>
    <message>
        <source>Not selected</source>
        <translation>Не выбрана</translation>
    </message>
</context>
<context>
    <name>CSelectCameraRecordingForm</name>
    <message>
        <source>Select Camera Recording</source>
        <translation>Выбор камер для записи</translation>
    </message>
</context>
<context>
    <name>CVolumeSliderForm</name>
    <message>
        <source>Volume</source>
        <translation>Громкость</translation>
    </message>
    <message>
        <source>Sound on</source>
        <translation>Включить звук</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Без звука</translation>
    </message>
</context>
<context>
    <name>CameraMenu</name>
    <message>
        <source>Copy as text</source>
        <translation>Копировать как текст</translation>
    </message>
    <message>
        <source>Trust the new key...</source>
        <translation>Принять новый ключ...</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>Предупреждение</translation>
    </message>
    <message>
        <source>Trust the new key of &quot;%1&quot;? Do it only when you have reset or replaced the camera.</source>
        <translation>Принять новый ключ камеры «%1»? Только если вы сбросили или заменили камеру.</translation>
    </message>
</context>
<context>
    <name>CameraSetUp</name>
    <message>
        <source>Camera Setup</source>
        <translation>Настройка камеры</translation>
    </message>
    <message>
        <source>Camera Settings</source>
        <translation>Параметры камеры</translation>
    </message>
    <message>
        <source>Device Location</source>
        <translation>Расположение устройства</translation>
    </message>
    <message>
        <source>HttpPort</source>
        <translation>Порт HTTP</translation>
    </message>
    <message>
        <source>Assigned IP Address Manually</source>
        <translation>Назначить IP-адрес вручную</translation>
    </message>
    <message>
        <source>IP</source>
        <translation>IP</translation>
    </message>
    <message>
        <source>Mask</source>
        <translation>Маска</translation>
    </message>
    <message>
        <source>Default Getway</source>
        <translation>Основной шлюз</translation>
    </message>
    <message>
        <source>Assigned DNS Manually</source>
        <translation>Назначить DNS вручную</translation>
    </message>
    <message>
        <source>Primary DNS</source>
        <translation>Основной DNS</translation>
    </message>
    <message>
        <source>Sencondary DNS</source>
        <translation>Дополнительный DNS</translation>
    </message>
    <message>
        <source>User Name</source>
        <translation>Имя пользователя</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>Пароль</translation>
    </message>
    <message>
        <source>Query</source>
        <translation>Запросить</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Применить</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Выход</translation>
    </message>
    <message>
        <source>DeviceName</source>
        <translation>Имя устройства</translation>
    </message>
</context>
<context>
    <name>Duration</name>
    <message>
        <source>less than 1 min</source>
        <translation>меньше 1 мин</translation>
    </message>
    <message>
        <source>%1 min</source>
        <translation>%1 мин</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1 ч %2 мин</translation>
    </message>
</context>
<context>
    <name>LiveView</name>
    <message>
        <source> is connecting...</source>
        <translation> — подключение...</translation>
    </message>
    <message>
        <source>%1 is not being recorded: the album folder cannot be written, or the disk is full.</source>
        <translation>%1 не записывается: папка альбома недоступна для записи или диск заполнен.</translation>
    </message>
</context>
<context>
    <name>Motion_Dialog</name>
    <message>
        <source>Motion Settings</source>
        <translation>Параметры детектора движения</translation>
    </message>
    <message>
        <source>Query</source>
        <translation>Запросить</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>Применить</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>Выход</translation>
    </message>
    <message>
        <source>Please wait for query motion information...</source>
        <translation>Запрос параметров детектора движения, подождите...</translation>
    </message>
    <message>
        <source>Please wait for apply motion settings...</source>
        <translation>Применение параметров детектора движения, подождите...</translation>
    </message>
    <message>
        <source>info</source>
        <translation>Информация</translation>
    </message>
    <message>
        <source>Some error happens. Please wait a few minutes and re-try.</source>
        <translation>Произошла ошибка. Подождите несколько минут и повторите попытку.</translation>
    </message>
</context>
<context>
    <name>NetworkFormCheck</name>
    <message>
        <source>Device Name input invalid!</source>
        <translation>Недопустимое имя устройства!</translation>
    </message>
    <message>
        <source>Device Name is too long!</source>
        <translation>Имя устройства слишком длинное!</translation>
    </message>
    <message>
        <source>Location input invalid!</source>
        <translation>Недопустимое расположение!</translation>
    </message>
    <message>
        <source>Location is too long!</source>
        <translation>Расположение слишком длинное!</translation>
    </message>
    <message>
        <source>Http Port input invalid!</source>
        <translation>Недопустимый порт HTTP!</translation>
    </message>
    <message>
        <source>Http Port out of range!</source>
        <translation>Порт HTTP вне допустимого диапазона!</translation>
    </message>
    <message>
        <source>invalid IP or Mask!</source>
        <translation>Недопустимый IP-адрес или маска!</translation>
    </message>
</context>
<context>
    <name>Reason</name>
    <message>
        <source>%1 is not found. Is the camera on, and in this network?</source>
        <translation>%1 не найдена. Камера включена и находится в этой сети?</translation>
    </message>
    <message>
        <source>No answer from %1. Is the camera on?</source>
        <translation>Нет ответа от %1. Камера включена?</translation>
    </message>
    <message>
        <source>%1 takes no connection. Is the port right, and RTSP switched on in the camera?</source>
        <translation>%1 не принимает соединение. Верен ли порт и включён ли RTSP в камере?</translation>
    </message>
    <message>
        <source>The camera refuses this user name or password. Correct them with &quot;Modify&quot;.</source>
        <translation>Камера отвергает это имя пользователя или пароль. Исправьте их через «Изменить».</translation>
    </message>
    <message>
        <source>The camera refuses this user name or password. The next try is in %1, so that the camera does not lock the account. Correct them with &quot;Modify&quot;.</source>
        <translation>Камера отвергает это имя пользователя или пароль. Чтобы камера не заблокировала учётную запись, следующая попытка будет через %1. Исправьте их через «Изменить».</translation>
    </message>
    <message>
        <source>The camera does not play %1. Is ONVIF switched on in the camera?</source>
        <translation>Камера не передаёт %1. Включён ли ONVIF в камере?</translation>
    </message>
    <message>
        <source>The camera offers no picture. Is video switched on in the camera?</source>
        <translation>Камера не предлагает изображения. Включено ли видео в камере?</translation>
    </message>
    <message>
        <source>The camera sends %1, which cannot be shown. Set it to H.264, H.265 or MJPEG.</source>
        <translation>Камера передаёт %1, это показать нельзя. Настройте в ней H.264, H.265 или MJPEG.</translation>
    </message>
    <message>
        <source>%1 has ended the stream. It is started again.</source>
        <translation>%1 завершила поток. Он запускается снова.</translation>
    </message>
    <message>
        <source>No pictures come from %1. The stream is started again.</source>
        <translation>От %1 не приходит изображение. Поток запускается снова.</translation>
    </message>
    <message>
        <source>%1 does not answer as a camera. Is the port right?</source>
        <translation>%1 отвечает не как камера. Верен ли порт?</translation>
    </message>
    <message>
        <source>%1 shows another TLS key than before: it is another camera, or was reset, or someone pretends to be it. A right click lets you trust the new key.</source>
        <translation>%1 показывает другой ключ TLS, чем раньше: это другая камера, она сброшена, или кто-то выдаёт себя за неё. Правым щелчком можно принять новый ключ.</translation>
    </message>
    <message>
        <source>The camera does not answer. Is it on?</source>
        <translation>Камера не отвечает. Она включена?</translation>
    </message>
    <message>
        <source>%1 answers, but not over TLS. Is the port right?</source>
        <translation>%1 отвечает, но не по TLS. Верен ли порт?</translation>
    </message>
</context>
<context>
    <name>SearchCameraForm</name>
    <message>
        <source>Search Camera</source>
        <translation>Поиск камер</translation>
    </message>
    <message>
        <source>Select Camera</source>
        <translation>Выбор камеры</translation>
    </message>
    <message>
        <source>Cameras on the network</source>
        <translation>Камеры в сети</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Отмена</translation>
    </message>
    <message>
        <source>Search again</source>
        <translation>Искать снова</translation>
    </message>
</context>
<context>
    <name>SearchCameraListForm</name>
    <message>
        <source>Cameras on the network</source>
        <translation>Камеры в сети</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Поиск</translation>
    </message>
    <message>
        <source>Browser</source>
        <translation>Браузер</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Очистить</translation>
    </message>
    <message>
        <source>Setup</source>
        <translation>Настройка</translation>
    </message>
</context>
<context>
    <name>SelectionDialog</name>
    <message>
        <source>Select Camera</source>
        <translation>Выбор камеры</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Закрыть</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>SettingsNotice</name>
    <message>
        <source>%1 cannot be read: its cameras are missing here.</source>
        <translation>Не удаётся прочитать %1: камеры из него здесь не показаны.</translation>
    </message>
    <message>
        <source>%1 has a gap in its numbers: the cameras after it are missing here.</source>
        <translation>В %1 пропущен номер: камеры после него здесь не показаны.</translation>
    </message>
    <message>
        <source>Changes cannot be saved in %1.</source>
        <translation>Не удаётся сохранить изменения в %1.</translation>
    </message>
    <message>
        <source>Some texts cannot be saved whole in %1.</source>
        <translation>Некоторые тексты нельзя полностью сохранить в %1.</translation>
    </message>
</context>
<context>
    <name>StoredText</name>
    <message>
        <source>%1: too long to be saved. Please enter a shorter text.</source>
        <translation>%1: слишком длинный текст, его нельзя сохранить. Введите более короткий.</translation>
    </message>
    <message>
        <source>%1: has characters that cannot be saved on this system.</source>
        <translation>%1: содержит символы, которые нельзя сохранить в этой системе.</translation>
    </message>
</context>
<context>
    <name>StreamDetails</name>
    <message>
        <source>Picture: %1, %2x%3, by %4</source>
        <translation>Изображение: %1, %2x%3, по %4</translation>
    </message>
    <message>
        <source>Sound: %1</source>
        <translation>Звук: %1</translation>
    </message>
    <message>
        <source>Frames: %1 received, %2 drawn, %3 left out</source>
        <translation>Кадры: получено %1, показано %2, пропущено %3</translation>
    </message>
    <message>
        <source>Packets: %1 received, %2 lost</source>
        <translation>Пакеты: получено %1, потеряно %2</translation>
    </message>
    <message>
        <source>Jitter %1 ms, delay %2 ms</source>
        <translation>Дрожание %1 мс, задержка %2 мс</translation>
    </message>
    <message>
        <source>Decoder: %1</source>
        <translation>Декодер: %1</translation>
    </message>
</context>
<context>
    <name>zelvaro::AlbumView</name>
    <message>
        <source>Error</source>
        <translation>Ошибка</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be deleted.</source>
        <translation>Не удаётся удалить «%1».</translation>
    </message>
</context>
<context>
    <name>zelvaro::DiskWatch</name>
    <message>
        <source>The disk of the album has %1 left.</source>
        <translation>На диске альбома осталось %1.</translation>
    </message>
    <message>
        <source>The disk of the album has %1 left. The running recordings fit for %2.</source>
        <translation>На диске альбома осталось %1. Идущим записям хватит места на %2.</translation>
    </message>
</context>
<context>
    <name>zelvaro::LiveNotice</name>
    <message>
        <source>No picture since %1</source>
        <translation>Нет изображения с %1</translation>
    </message>
    <message>
        <source>%1: no picture yet</source>
        <translation>%1: изображения ещё нет</translation>
    </message>
    <message>
        <source>not recorded</source>
        <translation>не пишется</translation>
    </message>
</context>
<context>
    <name>zelvaro::MotionWindowBox</name>
    <message>
        <source>Detection Window: %1</source>
        <translation>Окно обнаружения: %1</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Слева</translation>
    </message>
    <message>
        <source>Top</source>
        <translation>Сверху</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Справа</translation>
    </message>
    <message>
        <source>Bottom</source>
        <translation>Снизу</translation>
    </message>
    <message>
        <source>Threshold</source>
        <translation>Порог</translation>
    </message>
    <message>
        <source>Sensitivity</source>
        <translation>Чувствительность</translation>
    </message>
</context>
</TS>
