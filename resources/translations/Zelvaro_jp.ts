<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja_JP" sourcelanguage="en_US">
<context>
    <name>CAddButtonForm</name>
    <message>
        <source>Add a camera</source>
        <translation>カメラを追加します</translation>
    </message>
</context>
<context>
    <name>CAddCameraForm</name>
    <message>
        <source>Add Camera</source>
        <translation>カメラの追加</translation>
    </message>
    <message>
        <source>UID or address</source>
        <translation>UID またはアドレス</translation>
    </message>
    <message>
        <source>Find cameras on this network</source>
        <translation>このネットワーク上のカメラを探します</translation>
    </message>
    <message>
        <source>Discover</source>
        <translation>検索</translation>
    </message>
    <message>
        <source>User Name</source>
        <translation>ユーザー名</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>パスワード</translation>
    </message>
    <message>
        <source>Camera Name</source>
        <translation>カメラ名</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>Modify Camera</source>
        <translation>カメラの変更</translation>
    </message>
    <message>
        <source>Please input UID.</source>
        <translation>UID を入力してください。</translation>
    </message>
    <message>
        <source>Please input user name.</source>
        <translation>ユーザー名を入力してください。</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
</context>
<context>
    <name>CAddressEdit</name>
    <message>
        <source>Part %1 of the address</source>
        <translation>アドレスの第 %1 部分</translation>
    </message>
</context>
<context>
    <name>CCameraMgrFrame</name>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
    <message>
        <source>Cannot add camera, 100 is maxnum.</source>
        <translation>カメラを追加できません。最大 100 台です。</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Delete camera?</source>
        <translation>カメラを削除しますか？</translation>
    </message>
    <message>
        <source>Reboot camera?</source>
        <translation>カメラを再起動しますか？</translation>
    </message>
    <message>
        <source>Please wait for reboot...</source>
        <translation>再起動しています。お待ちください...</translation>
    </message>
    <message>
        <source>info</source>
        <translation>情報</translation>
    </message>
    <message>
        <source>Reboot success. Please wait a few minutes and re-connect.</source>
        <translation>再起動しました。数分待ってから接続し直してください。</translation>
    </message>
    <message>
        <source>Reboot failed. Please wait a few minutes and re-try.</source>
        <translation>再起動に失敗しました。数分待ってからもう一度お試しください。</translation>
    </message>
</context>
<context>
    <name>CCameraMgrItemForm</name>
    <message>
        <source>Menu</source>
        <translation>メニュー</translation>
    </message>
    <message>
        <source>Camera menu</source>
        <translation>カメラのメニュー</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>再生</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>削除</translation>
    </message>
    <message>
        <source>Modify</source>
        <translation>変更</translation>
    </message>
    <message>
        <source>Invalid Password!</source>
        <translation>パスワードが正しくありません！</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>接続済み</translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation>未接続</translation>
    </message>
    <message>
        <source>Not connected since %1</source>
        <translation>%1 から未接続</translation>
    </message>
    <message>
        <source>The picture is of %1</source>
        <translation>映像は %1 のものです</translation>
    </message>
</context>
<context>
    <name>CCameraSetUp</name>
    <message>
        <source>Please wait for get configuration...</source>
        <translation>設定を取得しています。お待ちください...</translation>
    </message>
    <message>
        <source>Please wait for set configuration...</source>
        <translation>設定を書き込んでいます。お待ちください...</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
    <message>
        <source>Network error. Please wait a while and try again.</source>
        <translation>ネットワークエラーです。しばらく待ってからもう一度お試しください。</translation>
    </message>
    <message>
        <source>Authenticate failed. Please check your user name or password.</source>
        <translation>認証に失敗しました。ユーザー名またはパスワードを確認してください。</translation>
    </message>
    <message>
        <source>Get configuration failed. Please wait a while and try again.</source>
        <translation>設定の取得に失敗しました。しばらく待ってからもう一度お試しください。</translation>
    </message>
    <message>
        <source>Set configuration failed. Please check your configuration and try again.</source>
        <translation>設定の書き込みに失敗しました。設定を確認してからもう一度お試しください。</translation>
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
        <translation>メニュー</translation>
    </message>
    <message>
        <source>Minimize</source>
        <translation>最小化</translation>
    </message>
    <message>
        <source>Maximize</source>
        <translation>最大化</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>閉じる</translation>
    </message>
    <message>
        <source>Cameras (Alt+C)</source>
        <translation>カメラ (Alt+C)</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>カメラ</translation>
    </message>
    <message>
        <source>Several cameras side by side (Alt+M)</source>
        <translation>複数のカメラを並べて表示 (Alt+M)</translation>
    </message>
    <message>
        <source>MultiLive</source>
        <translation>マルチライブ</translation>
    </message>
    <message>
        <source>Recordings (Alt+V)</source>
        <translation>録画 (Alt+V)</translation>
    </message>
    <message>
        <source>Video</source>
        <translation>ビデオ</translation>
    </message>
    <message>
        <source>Photos (Alt+A)</source>
        <translation>写真 (Alt+A)</translation>
    </message>
    <message>
        <source>Album</source>
        <translation>アルバム</translation>
    </message>
    <message>
        <source>Find and set up cameras (Alt+S)</source>
        <translation>カメラの検索と設定 (Alt+S)</translation>
    </message>
    <message>
        <source>Setup</source>
        <translation>設定</translation>
    </message>
    <message>
        <source>Version 1.4 (Build 20180813)</source>
        <translation>バージョン 1.4 (ビルド 20180813)</translation>
    </message>
    <message>
        <source>Save Path...</source>
        <translation>保存先...</translation>
    </message>
    <message>
        <source>Selecte Path</source>
        <translation>保存先の選択</translation>
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
        <translation>元に戻す</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>パス</translation>
    </message>
    <message>
        <source>Nothing can be written to this folder. Please choose another one.</source>
        <translation>このフォルダーには書き込めません。別のフォルダーを選んでください。</translation>
    </message>
</context>
<context>
    <name>CMessageBox</name>
    <message>
        <source>Message</source>
        <translation>メッセージ</translation>
    </message>
    <message>
        <source>Icon</source>
        <translation>アイコン</translation>
    </message>
    <message>
        <source>Message Text</source>
        <translation>メッセージの本文</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
</context>
<context>
    <name>CMultiLiveForm</name>
    <message>
        <source>Select cameras</source>
        <translation>カメラを選択</translation>
    </message>
    <message>
        <source>Snapshot</source>
        <translation>スナップショット</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>録画</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>By changing view your recording will be stop.</source>
        <translation>表示を切り替えると録画が停止します。</translation>
    </message>
    <message>
        <source>Hear this camera</source>
        <translation>このカメラの音声を聞く</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>全画面</translation>
    </message>
    <message>
        <source>Nothing is heard: click a picture to hear its camera.</source>
        <translation>音声は出ていません。聞きたいカメラの映像をクリックしてください。</translation>
    </message>
    <message>
        <source>This camera sends no sound.</source>
        <translation>このカメラは音声を送信していません。</translation>
    </message>
</context>
<context>
    <name>CMultiLiveFrame</name>
    <message>
        <source>No camera is selected for this view.</source>
        <translation>このビューにはカメラが選択されていません。</translation>
    </message>
</context>
<context>
    <name>CMultiLiveItemForm</name>
    <message>
        <source>Live picture</source>
        <translation>ライブ映像</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>ダブルクリックまたは Esc キーで全画面表示を切り替えます。</translation>
    </message>
    <message>
        <source>Camera Name</source>
        <translation>カメラ名</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>録画中</translation>
    </message>
    <message>
        <source>not recorded</source>
        <translation>録画なし</translation>
    </message>
</context>
<context>
    <name>CPhotoMgrForm</name>
    <message>
        <source>Camera List</source>
        <translation>カメラ一覧</translation>
    </message>
    <message>
        <source>Photos</source>
        <translation>写真</translation>
    </message>
    <message>
        <source>Videos</source>
        <translation>ビデオ</translation>
    </message>
</context>
<context>
    <name>CPhotoMgrFrame</name>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Delete video?</source>
        <translation>ビデオを削除しますか？</translation>
    </message>
    <message>
        <source>Delete photo?</source>
        <translation>写真を削除しますか？</translation>
    </message>
    <message>
        <source>This camera has no recordings yet.</source>
        <translation>このカメラの録画はまだありません。</translation>
    </message>
    <message>
        <source>This camera has no photos yet.</source>
        <translation>このカメラの写真はまだありません。</translation>
    </message>
</context>
<context>
    <name>CPhotoMgrItemForm</name>
    <message>
        <source>Photo Name</source>
        <translation>写真の名前</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>再生</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>削除</translation>
    </message>
</context>
<context>
    <name>CPlayCameraForm</name>
    <message>
        <source>Live picture</source>
        <translation>ライブ映像</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>ダブルクリックまたは Esc キーで全画面表示を切り替えます。</translation>
    </message>
    <message>
        <source>Camera Name</source>
        <translation>カメラ名</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>録画中</translation>
    </message>
    <message>
        <source>Snapshot</source>
        <translation>スナップショット</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>録画</translation>
    </message>
    <message>
        <source>ZoomIn</source>
        <translation>拡大</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>拡大</translation>
    </message>
    <message>
        <source>ZoomOut</source>
        <translation>縮小</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>縮小</translation>
    </message>
    <message>
        <source>FullScreen</source>
        <translation>全画面</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>全画面</translation>
    </message>
    <message>
        <source>Talk</source>
        <translation>通話</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>戻る</translation>
    </message>
    <message>
        <source>Talking does not work: there is no microphone.</source>
        <translation>通話できません: マイクがありません。</translation>
    </message>
    <message>
        <source>Talking does not work: the camera takes no sound.</source>
        <translation>通話できません: カメラが音声を受け付けません。</translation>
    </message>
    <message>
        <source>Talking does not work: the connection failed.</source>
        <translation>通話できません: 接続に失敗しました。</translation>
    </message>
    <message>
        <source>not recorded</source>
        <translation>録画なし</translation>
    </message>
    <message>
        <source>This camera sends no sound.</source>
        <translation>このカメラは音声を送信していません。</translation>
    </message>
</context>
<context>
    <name>CPlayPhotoForm</name>
    <message>
        <source>Photo</source>
        <translation>写真</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>ダブルクリックまたは Esc キーで全画面表示を切り替えます。</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>前へ</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>次へ</translation>
    </message>
    <message>
        <source>ZoomIn</source>
        <translation>拡大</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>拡大</translation>
    </message>
    <message>
        <source>ZoomOut</source>
        <translation>縮小</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>縮小</translation>
    </message>
    <message>
        <source>FullScreen</source>
        <translation>全画面</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>全画面</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>削除</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>戻る</translation>
    </message>
</context>
<context>
    <name>CPlayVideoForm</name>
    <message>
        <source>Video</source>
        <translation>ビデオ</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>ダブルクリックまたは Esc キーで全画面表示を切り替えます。</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>前へ</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>再生</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>次へ</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>再生位置</translation>
    </message>
    <message>
        <source>ZoomIn</source>
        <translation>拡大</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>拡大</translation>
    </message>
    <message>
        <source>ZoomOut</source>
        <translation>縮小</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>縮小</translation>
    </message>
    <message>
        <source>FullScreen</source>
        <translation>全画面</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>全画面</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>削除</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>戻る</translation>
    </message>
    <message>
        <source>Recordings cannot be played: no back end of Phonon is installed.</source>
        <translation>録画を再生できません。Phonon のバックエンドがインストールされていません。</translation>
    </message>
    <message>
        <source>This recording cannot be played.</source>
        <translation>この録画は再生できません。</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>一時停止</translation>
    </message>
</context>
<context>
    <name>CSearchCameraForm</name>
    <message>
        <source>Searching...</source>
        <translation>検索中...</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
    <message>
        <source>Please select a camera.</source>
        <translation>カメラを選択してください。</translation>
    </message>
    <message>
        <source>Cameras found: %1</source>
        <translation>見つかったカメラ: %1 台</translation>
    </message>
    <message>
        <source>The search cannot be started.</source>
        <translation>検索を開始できません。</translation>
    </message>
</context>
<context>
    <name>CSearchCameraListForm</name>
    <message>
        <source>Model</source>
        <translation>モデル</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名前</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>場所</translation>
    </message>
    <message>
        <source>IP</source>
        <translation>IP</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>ポート</translation>
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
        <translation>カメラを検索しています。お待ちください...</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
    <message>
        <source>Please select a camera.</source>
        <translation>カメラを選択してください。</translation>
    </message>
    <message>
        <source>Please wait for get onfiguration...</source>
        <translation>設定を取得しています。お待ちください...</translation>
    </message>
    <message>
        <source>Press &quot;Search&quot; to find the cameras of this network.</source>
        <translation>「検索」を押すと、このネットワークのカメラを検索します。</translation>
    </message>
    <message>
        <source>The search cannot be started. Please wait a while and try again.</source>
        <translation>検索を開始できません。しばらく待ってからもう一度お試しください。</translation>
    </message>
</context>
<context>
    <name>CSelectCameraForm</name>
    <message>
        <source>Select Camera</source>
        <translation>カメラの選択</translation>
    </message>
</context>
<context>
    <name>CSelectCameraItemForm</name>
    <message>
        <source>Camera Name</source>
        <translation>カメラ名</translation>
    </message>
    <message>
        <source>Selected</source>
        <translation>選択済み</translation>
    </message>
    <message>
        <source>Not selected</source>
        <translation>未選択</translation>
    </message>
</context>
<context>
    <name>CSelectCameraRecordingForm</name>
    <message>
        <source>Select Camera Recording</source>
        <translation>録画するカメラの選択</translation>
    </message>
</context>
<context>
    <name>CVolumeSliderForm</name>
    <message>
        <source>Volume</source>
        <translation>音量</translation>
    </message>
    <message>
        <source>Sound on</source>
        <translation>音声オン</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>ミュート</translation>
    </message>
</context>
<context>
    <name>CameraMenu</name>
    <message>
        <source>Copy as text</source>
        <translation>テキストとしてコピー</translation>
    </message>
    <message>
        <source>Trust the new key...</source>
        <translation>新しいキーを信頼...</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Trust the new key of &quot;%1&quot;? Do it only when you have reset or replaced the camera.</source>
        <translation>「%1」の新しいキーを信頼しますか。カメラを初期化または交換した場合にだけ行ってください。</translation>
    </message>
</context>
<context>
    <name>CameraSetUp</name>
    <message>
        <source>Camera Setup</source>
        <translation>カメラの設定</translation>
    </message>
    <message>
        <source>Camera Settings</source>
        <translation>カメラの設定項目</translation>
    </message>
    <message>
        <source>Device Location</source>
        <translation>デバイスの場所</translation>
    </message>
    <message>
        <source>HttpPort</source>
        <translation>HTTP ポート</translation>
    </message>
    <message>
        <source>Assigned IP Address Manually</source>
        <translation>IP アドレスを手動で割り当てる</translation>
    </message>
    <message>
        <source>IP</source>
        <translation>IP</translation>
    </message>
    <message>
        <source>Mask</source>
        <translation>マスク</translation>
    </message>
    <message>
        <source>Default Getway</source>
        <translation>デフォルトゲートウェイ</translation>
    </message>
    <message>
        <source>Assigned DNS Manually</source>
        <translation>DNS を手動で割り当てる</translation>
    </message>
    <message>
        <source>Primary DNS</source>
        <translation>プライマリ DNS</translation>
    </message>
    <message>
        <source>Sencondary DNS</source>
        <translation>セカンダリ DNS</translation>
    </message>
    <message>
        <source>User Name</source>
        <translation>ユーザー名</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>パスワード</translation>
    </message>
    <message>
        <source>Query</source>
        <translation>読み込み</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>適用</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>終了</translation>
    </message>
    <message>
        <source>DeviceName</source>
        <translation>デバイス名</translation>
    </message>
</context>
<context>
    <name>Duration</name>
    <message>
        <source>less than 1 min</source>
        <translation>1 分未満</translation>
    </message>
    <message>
        <source>%1 min</source>
        <translation>%1 分</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1 時間 %2 分</translation>
    </message>
</context>
<context>
    <name>LiveView</name>
    <message>
        <source> is connecting...</source>
        <translation> に接続しています...</translation>
    </message>
    <message>
        <source>%1 is not being recorded: the album folder cannot be written, or the disk is full.</source>
        <translation>%1 は録画されていません: アルバムフォルダーに書き込めないか、ディスクがいっぱいです。</translation>
    </message>
</context>
<context>
    <name>Motion_Dialog</name>
    <message>
        <source>Motion Settings</source>
        <translation>動体検知の設定</translation>
    </message>
    <message>
        <source>Query</source>
        <translation>読み込み</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>適用</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>終了</translation>
    </message>
    <message>
        <source>Please wait for query motion information...</source>
        <translation>動体検知の情報を取得しています。お待ちください...</translation>
    </message>
    <message>
        <source>Please wait for apply motion settings...</source>
        <translation>動体検知の設定を適用しています。お待ちください...</translation>
    </message>
    <message>
        <source>info</source>
        <translation>情報</translation>
    </message>
    <message>
        <source>Some error happens. Please wait a few minutes and re-try.</source>
        <translation>エラーが発生しました。数分待ってからもう一度お試しください。</translation>
    </message>
</context>
<context>
    <name>NetworkFormCheck</name>
    <message>
        <source>Device Name input invalid!</source>
        <translation>デバイス名の入力が正しくありません！</translation>
    </message>
    <message>
        <source>Device Name is too long!</source>
        <translation>デバイス名が長すぎます！</translation>
    </message>
    <message>
        <source>Location input invalid!</source>
        <translation>場所の入力が正しくありません！</translation>
    </message>
    <message>
        <source>Location is too long!</source>
        <translation>場所が長すぎます！</translation>
    </message>
    <message>
        <source>Http Port input invalid!</source>
        <translation>HTTP ポートの入力が正しくありません！</translation>
    </message>
    <message>
        <source>Http Port out of range!</source>
        <translation>HTTP ポートが範囲外です！</translation>
    </message>
    <message>
        <source>invalid IP or Mask!</source>
        <translation>IP またはマスクが正しくありません！</translation>
    </message>
</context>
<context>
    <name>Reason</name>
    <message>
        <source>%1 is not found. Is the camera on, and in this network?</source>
        <translation>%1 が見つかりません。カメラの電源は入っていますか。同じネットワークにありますか。</translation>
    </message>
    <message>
        <source>No answer from %1. Is the camera on?</source>
        <translation>%1 から応答がありません。カメラの電源は入っていますか。</translation>
    </message>
    <message>
        <source>%1 takes no connection. Is the port right, and RTSP switched on in the camera?</source>
        <translation>%1 が接続を受け付けません。ポートは正しいですか。カメラの RTSP は有効ですか。</translation>
    </message>
    <message>
        <source>The camera refuses this user name or password. Correct them with &quot;Modify&quot;.</source>
        <translation>カメラがこのユーザー名またはパスワードを拒否しました。「変更」で修正してください。</translation>
    </message>
    <message>
        <source>The camera refuses this user name or password. The next try is in %1, so that the camera does not lock the account. Correct them with &quot;Modify&quot;.</source>
        <translation>カメラがこのユーザー名またはパスワードを拒否しました。アカウントがロックされないよう、次は %1後に試します。「変更」で修正してください。</translation>
    </message>
    <message>
        <source>The camera does not play %1. Is ONVIF switched on in the camera?</source>
        <translation>カメラは %1 を再生できません。カメラの ONVIF は有効ですか。</translation>
    </message>
    <message>
        <source>The camera offers no picture. Is video switched on in the camera?</source>
        <translation>カメラに映像がありません。カメラの映像は有効ですか。</translation>
    </message>
    <message>
        <source>The camera sends %1, which cannot be shown. Set it to H.264, H.265 or MJPEG.</source>
        <translation>カメラが送信する %1 は表示できません。H.264、H.265、MJPEG のいずれかに設定してください。</translation>
    </message>
    <message>
        <source>%1 has ended the stream. It is started again.</source>
        <translation>%1 が配信を終了しました。もう一度開始しています。</translation>
    </message>
    <message>
        <source>No pictures come from %1. The stream is started again.</source>
        <translation>%1 から映像が届きません。もう一度開始しています。</translation>
    </message>
    <message>
        <source>%1 does not answer as a camera. Is the port right?</source>
        <translation>%1 はカメラとして応答しません。ポートは正しいですか。</translation>
    </message>
    <message>
        <source>%1 shows another TLS key than before: it is another camera, or was reset, or someone pretends to be it. A right click lets you trust the new key.</source>
        <translation>%1 の TLS キーが以前と異なります。別のカメラか、初期化されたか、なりすましの可能性があります。右クリックで新しいキーを信頼できます。</translation>
    </message>
    <message>
        <source>The camera does not answer. Is it on?</source>
        <translation>カメラが応答しません。電源は入っていますか。</translation>
    </message>
    <message>
        <source>%1 answers, but not over TLS. Is the port right?</source>
        <translation>%1 は応答しますが、TLS ではありません。ポートは正しいですか。</translation>
    </message>
</context>
<context>
    <name>SearchCameraForm</name>
    <message>
        <source>Search Camera</source>
        <translation>カメラの検索</translation>
    </message>
    <message>
        <source>Select Camera</source>
        <translation>カメラの選択</translation>
    </message>
    <message>
        <source>Cameras on the network</source>
        <translation>ネットワーク上のカメラ</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>キャンセル</translation>
    </message>
    <message>
        <source>Search again</source>
        <translation>再検索</translation>
    </message>
</context>
<context>
    <name>SearchCameraListForm</name>
    <message>
        <source>Cameras on the network</source>
        <translation>ネットワーク上のカメラ</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>検索</translation>
    </message>
    <message>
        <source>Browser</source>
        <translation>ブラウザー</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>クリア</translation>
    </message>
    <message>
        <source>Setup</source>
        <translation>設定</translation>
    </message>
</context>
<context>
    <name>SelectionDialog</name>
    <message>
        <source>Select Camera</source>
        <translation>カメラの選択</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>閉じる</translation>
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
        <translation>%1 を読み込めません。登録されたカメラは表示されていません。</translation>
    </message>
    <message>
        <source>%1 has a gap in its numbers: the cameras after it are missing here.</source>
        <translation>%1 の番号が途切れています。それより後のカメラは表示されていません。</translation>
    </message>
    <message>
        <source>Changes cannot be saved in %1.</source>
        <translation>変更を %1 に保存できません。</translation>
    </message>
    <message>
        <source>Some texts cannot be saved whole in %1.</source>
        <translation>一部の文字列を %1 にそのまま保存できません。</translation>
    </message>
</context>
<context>
    <name>StoredText</name>
    <message>
        <source>%1: too long to be saved. Please enter a shorter text.</source>
        <translation>%1: 長すぎて保存できません。短くしてください。</translation>
    </message>
    <message>
        <source>%1: has characters that cannot be saved on this system.</source>
        <translation>%1: このシステムでは保存できない文字が含まれています。</translation>
    </message>
</context>
<context>
    <name>StreamDetails</name>
    <message>
        <source>Picture: %1, %2x%3, by %4</source>
        <translation>映像: %1、%2x%3、%4 経由</translation>
    </message>
    <message>
        <source>Sound: %1</source>
        <translation>音声: %1</translation>
    </message>
    <message>
        <source>Frames: %1 received, %2 drawn, %3 left out</source>
        <translation>フレーム: 受信 %1、表示 %2、省略 %3</translation>
    </message>
    <message>
        <source>Packets: %1 received, %2 lost</source>
        <translation>パケット: 受信 %1、損失 %2</translation>
    </message>
    <message>
        <source>Jitter %1 ms, delay %2 ms</source>
        <translation>ゆらぎ %1 ms、遅延 %2 ms</translation>
    </message>
    <message>
        <source>Decoder: %1</source>
        <translation>デコーダー: %1</translation>
    </message>
</context>
<context>
    <name>zelvaro::AlbumView</name>
    <message>
        <source>Error</source>
        <translation>エラー</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be deleted.</source>
        <translation>「%1」を削除できません。</translation>
    </message>
</context>
<context>
    <name>zelvaro::DiskWatch</name>
    <message>
        <source>The disk of the album has %1 left.</source>
        <translation>アルバムのディスクの空きは %1 です。</translation>
    </message>
    <message>
        <source>The disk of the album has %1 left. The running recordings fit for %2.</source>
        <translation>アルバムのディスクの空きは %1 です。現在の録画はあと %2保存できます。</translation>
    </message>
</context>
<context>
    <name>zelvaro::LiveNotice</name>
    <message>
        <source>No picture since %1</source>
        <translation>%1 以降、映像なし</translation>
    </message>
    <message>
        <source>%1: no picture yet</source>
        <translation>%1: まだ映像がありません</translation>
    </message>
    <message>
        <source>not recorded</source>
        <translation>録画なし</translation>
    </message>
</context>
<context>
    <name>zelvaro::MotionWindowBox</name>
    <message>
        <source>Detection Window: %1</source>
        <translation>検知ウィンドウ: %1</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>左</translation>
    </message>
    <message>
        <source>Top</source>
        <translation>上</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>右</translation>
    </message>
    <message>
        <source>Bottom</source>
        <translation>下</translation>
    </message>
    <message>
        <source>Threshold</source>
        <translation>しきい値</translation>
    </message>
    <message>
        <source>Sensitivity</source>
        <translation>感度</translation>
    </message>
</context>
</TS>
