<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en_US">
<context>
    <name>CAddButtonForm</name>
    <message>
        <source>Add a camera</source>
        <translation>添加摄像机</translation>
    </message>
</context>
<context>
    <name>CAddCameraForm</name>
    <message>
        <source>Add Camera</source>
        <translation>添加摄像机</translation>
    </message>
    <message>
        <source>UID or address</source>
        <translation>UID 或地址</translation>
    </message>
    <message>
        <source>Find cameras on this network</source>
        <translation>查找此网络中的摄像机</translation>
    </message>
    <message>
        <source>Discover</source>
        <translation>发现</translation>
    </message>
    <message>
        <source>User Name</source>
        <translation>用户名</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>密码</translation>
    </message>
    <message>
        <source>Camera Name</source>
        <translation>摄像机名称</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Modify Camera</source>
        <translation>修改摄像机</translation>
    </message>
    <message>
        <source>Please input UID.</source>
        <translation>请输入 UID。</translation>
    </message>
    <message>
        <source>Please input user name.</source>
        <translation>请输入用户名。</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
</context>
<context>
    <name>CAddressEdit</name>
    <message>
        <source>Part %1 of the address</source>
        <translation>地址的第 %1 部分</translation>
    </message>
</context>
<context>
    <name>CCameraMgrFrame</name>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Cannot add camera, 100 is maxnum.</source>
        <translation>无法添加摄像机，最多 100 台。</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Delete camera?</source>
        <translation>要删除摄像机吗？</translation>
    </message>
    <message>
        <source>Reboot camera?</source>
        <translation>要重启摄像机吗？</translation>
    </message>
    <message>
        <source>Please wait for reboot...</source>
        <translation>正在重启，请稍候...</translation>
    </message>
    <message>
        <source>info</source>
        <translation>信息</translation>
    </message>
    <message>
        <source>Reboot success. Please wait a few minutes and re-connect.</source>
        <translation>重启成功。请等待几分钟后重新连接。</translation>
    </message>
    <message>
        <source>Reboot failed. Please wait a few minutes and re-try.</source>
        <translation>重启失败。请等待几分钟后重试。</translation>
    </message>
</context>
<context>
    <name>CCameraMgrItemForm</name>
    <message>
        <source>Menu</source>
        <translation>菜单</translation>
    </message>
    <message>
        <source>Camera menu</source>
        <translation>摄像机菜单</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>播放</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Modify</source>
        <translation>修改</translation>
    </message>
    <message>
        <source>Invalid Password!</source>
        <translation>密码无效！</translation>
    </message>
    <message>
        <source>Connected</source>
        <translation>已连接</translation>
    </message>
    <message>
        <source>Not connected</source>
        <translation>未连接</translation>
    </message>
    <message>
        <source>Not connected since %1</source>
        <translation>自 %1 起未连接</translation>
    </message>
    <message>
        <source>The picture is of %1</source>
        <translation>画面拍摄于 %1</translation>
    </message>
</context>
<context>
    <name>CCameraSetUp</name>
    <message>
        <source>Please wait for get configuration...</source>
        <translation>正在获取配置，请稍候...</translation>
    </message>
    <message>
        <source>Please wait for set configuration...</source>
        <translation>正在写入配置，请稍候...</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Network error. Please wait a while and try again.</source>
        <translation>网络错误。请稍候再试。</translation>
    </message>
    <message>
        <source>Authenticate failed. Please check your user name or password.</source>
        <translation>认证失败。请检查用户名或密码。</translation>
    </message>
    <message>
        <source>Get configuration failed. Please wait a while and try again.</source>
        <translation>获取配置失败。请稍候再试。</translation>
    </message>
    <message>
        <source>Set configuration failed. Please check your configuration and try again.</source>
        <translation>写入配置失败。请检查配置后重试。</translation>
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
        <translation>菜单</translation>
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
        <translation>关闭</translation>
    </message>
    <message>
        <source>Cameras (Alt+C)</source>
        <translation>摄像机 (Alt+C)</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>摄像机</translation>
    </message>
    <message>
        <source>Several cameras side by side (Alt+M)</source>
        <translation>并排显示多台摄像机 (Alt+M)</translation>
    </message>
    <message>
        <source>MultiLive</source>
        <translation>多画面</translation>
    </message>
    <message>
        <source>Recordings (Alt+V)</source>
        <translation>录像 (Alt+V)</translation>
    </message>
    <message>
        <source>Video</source>
        <translation>视频</translation>
    </message>
    <message>
        <source>Photos (Alt+A)</source>
        <translation>照片 (Alt+A)</translation>
    </message>
    <message>
        <source>Album</source>
        <translation>相册</translation>
    </message>
    <message>
        <source>Find and set up cameras (Alt+S)</source>
        <translation>查找和设置摄像机 (Alt+S)</translation>
    </message>
    <message>
        <source>Setup</source>
        <translation>设置</translation>
    </message>
    <message>
        <source>Version 1.4 (Build 20180813)</source>
        <translation>版本 1.4（内部版本 20180813）</translation>
    </message>
    <message>
        <source>Save Path...</source>
        <translation>保存路径...</translation>
    </message>
    <message>
        <source>Selecte Path</source>
        <translation>选择路径</translation>
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
        <translation>还原</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Path</source>
        <translation>路径</translation>
    </message>
    <message>
        <source>Nothing can be written to this folder. Please choose another one.</source>
        <translation>无法写入此文件夹。请选择其他文件夹。</translation>
    </message>
</context>
<context>
    <name>CMessageBox</name>
    <message>
        <source>Message</source>
        <translation>消息</translation>
    </message>
    <message>
        <source>Icon</source>
        <translation>图标</translation>
    </message>
    <message>
        <source>Message Text</source>
        <translation>消息文本</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
</context>
<context>
    <name>CMultiLiveForm</name>
    <message>
        <source>Select cameras</source>
        <translation>选择摄像机</translation>
    </message>
    <message>
        <source>Snapshot</source>
        <translation>抓拍</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>录像</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>By changing view your recording will be stop.</source>
        <translation>切换画面将停止录像。</translation>
    </message>
    <message>
        <source>Hear this camera</source>
        <translation>收听此摄像机</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>全屏</translation>
    </message>
    <message>
        <source>Nothing is heard: click a picture to hear its camera.</source>
        <translation>当前没有声音：点击画面即可收听该摄像机。</translation>
    </message>
    <message>
        <source>This camera sends no sound.</source>
        <translation>此摄像机不发送声音。</translation>
    </message>
</context>
<context>
    <name>CMultiLiveFrame</name>
    <message>
        <source>No camera is selected for this view.</source>
        <translation>此视图未选择摄像机。</translation>
    </message>
</context>
<context>
    <name>CMultiLiveItemForm</name>
    <message>
        <source>Live picture</source>
        <translation>实时画面</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>双击或按 Esc 键可切换全屏。</translation>
    </message>
    <message>
        <source>Camera Name</source>
        <translation>摄像机名称</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>正在录像</translation>
    </message>
    <message>
        <source>not recorded</source>
        <translation>未录制</translation>
    </message>
</context>
<context>
    <name>CPhotoMgrForm</name>
    <message>
        <source>Camera List</source>
        <translation>摄像机列表</translation>
    </message>
    <message>
        <source>Photos</source>
        <translation>照片</translation>
    </message>
    <message>
        <source>Videos</source>
        <translation>视频</translation>
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
        <translation>要删除视频吗？</translation>
    </message>
    <message>
        <source>Delete photo?</source>
        <translation>要删除照片吗？</translation>
    </message>
    <message>
        <source>This camera has no recordings yet.</source>
        <translation>此摄像机还没有录像。</translation>
    </message>
    <message>
        <source>This camera has no photos yet.</source>
        <translation>此摄像机还没有照片。</translation>
    </message>
</context>
<context>
    <name>CPhotoMgrItemForm</name>
    <message>
        <source>Photo Name</source>
        <translation>照片名称</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>播放</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
</context>
<context>
    <name>CPlayCameraForm</name>
    <message>
        <source>Live picture</source>
        <translation>实时画面</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>双击或按 Esc 键可切换全屏。</translation>
    </message>
    <message>
        <source>Camera Name</source>
        <translation>摄像机名称</translation>
    </message>
    <message>
        <source>Recording</source>
        <translation>正在录像</translation>
    </message>
    <message>
        <source>Snapshot</source>
        <translation>抓拍</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>录像</translation>
    </message>
    <message>
        <source>ZoomIn</source>
        <translation>放大</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>放大</translation>
    </message>
    <message>
        <source>ZoomOut</source>
        <translation>缩小</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>缩小</translation>
    </message>
    <message>
        <source>FullScreen</source>
        <translation>全屏</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>全屏</translation>
    </message>
    <message>
        <source>Talk</source>
        <translation>对讲</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>返回</translation>
    </message>
    <message>
        <source>Talking does not work: there is no microphone.</source>
        <translation>无法对讲：没有麦克风。</translation>
    </message>
    <message>
        <source>Talking does not work: the camera takes no sound.</source>
        <translation>无法对讲：摄像机不接收声音。</translation>
    </message>
    <message>
        <source>Talking does not work: the connection failed.</source>
        <translation>无法对讲：连接失败。</translation>
    </message>
    <message>
        <source>not recorded</source>
        <translation>未录制</translation>
    </message>
    <message>
        <source>This camera sends no sound.</source>
        <translation>此摄像机不发送声音。</translation>
    </message>
</context>
<context>
    <name>CPlayPhotoForm</name>
    <message>
        <source>Photo</source>
        <translation>照片</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>双击或按 Esc 键可切换全屏。</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>上一个</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>下一个</translation>
    </message>
    <message>
        <source>ZoomIn</source>
        <translation>放大</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>放大</translation>
    </message>
    <message>
        <source>ZoomOut</source>
        <translation>缩小</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>缩小</translation>
    </message>
    <message>
        <source>FullScreen</source>
        <translation>全屏</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>全屏</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>返回</translation>
    </message>
</context>
<context>
    <name>CPlayVideoForm</name>
    <message>
        <source>Video</source>
        <translation>视频</translation>
    </message>
    <message>
        <source>A double click or Escape toggles the full screen.</source>
        <translation>双击或按 Esc 键可切换全屏。</translation>
    </message>
    <message>
        <source>Previous</source>
        <translation>上一个</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>播放</translation>
    </message>
    <message>
        <source>Next</source>
        <translation>下一个</translation>
    </message>
    <message>
        <source>Position</source>
        <translation>播放位置</translation>
    </message>
    <message>
        <source>ZoomIn</source>
        <translation>放大</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>放大</translation>
    </message>
    <message>
        <source>ZoomOut</source>
        <translation>缩小</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>缩小</translation>
    </message>
    <message>
        <source>FullScreen</source>
        <translation>全屏</translation>
    </message>
    <message>
        <source>Full screen</source>
        <translation>全屏</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>删除</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>返回</translation>
    </message>
    <message>
        <source>Recordings cannot be played: no back end of Phonon is installed.</source>
        <translation>无法播放录像：未安装 Phonon 后端。</translation>
    </message>
    <message>
        <source>This recording cannot be played.</source>
        <translation>无法播放此录像。</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>暂停</translation>
    </message>
</context>
<context>
    <name>CSearchCameraForm</name>
    <message>
        <source>Searching...</source>
        <translation>正在搜索...</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Please select a camera.</source>
        <translation>请选择一台摄像机。</translation>
    </message>
    <message>
        <source>Cameras found: %1</source>
        <translation>找到的摄像机：%1</translation>
    </message>
    <message>
        <source>The search cannot be started.</source>
        <translation>无法开始搜索。</translation>
    </message>
</context>
<context>
    <name>CSearchCameraListForm</name>
    <message>
        <source>Model</source>
        <translation>型号</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>名称</translation>
    </message>
    <message>
        <source>Location</source>
        <translation>位置</translation>
    </message>
    <message>
        <source>IP</source>
        <translation>IP</translation>
    </message>
    <message>
        <source>Port</source>
        <translation>端口</translation>
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
        <translation>正在搜索摄像机，请稍候...</translation>
    </message>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>Please select a camera.</source>
        <translation>请选择一台摄像机。</translation>
    </message>
    <message>
        <source>Please wait for get onfiguration...</source>
        <translation>正在获取配置，请稍候...</translation>
    </message>
    <message>
        <source>Press &quot;Search&quot; to find the cameras of this network.</source>
        <translation>按“搜索”查找此网络中的摄像机。</translation>
    </message>
    <message>
        <source>The search cannot be started. Please wait a while and try again.</source>
        <translation>无法开始搜索。请稍候再试。</translation>
    </message>
</context>
<context>
    <name>CSelectCameraForm</name>
    <message>
        <source>Select Camera</source>
        <translation>选择摄像机</translation>
    </message>
</context>
<context>
    <name>CSelectCameraItemForm</name>
    <message>
        <source>Camera Name</source>
        <translation>摄像机名称</translation>
    </message>
    <message>
        <source>Selected</source>
        <translation>已选择</translation>
    </message>
    <message>
        <source>Not selected</source>
        <translation>未选择</translation>
    </message>
</context>
<context>
    <name>CSelectCameraRecordingForm</name>
    <message>
        <source>Select Camera Recording</source>
        <translation>选择录像的摄像机</translation>
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
        <translation>打开声音</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>静音</translation>
    </message>
</context>
<context>
    <name>CameraMenu</name>
    <message>
        <source>Copy as text</source>
        <translation>复制为文本</translation>
    </message>
    <message>
        <source>Trust the new key...</source>
        <translation>信任新密钥...</translation>
    </message>
    <message>
        <source>Warning</source>
        <translation>警告</translation>
    </message>
    <message>
        <source>Trust the new key of &quot;%1&quot;? Do it only when you have reset or replaced the camera.</source>
        <translation>信任“%1”的新密钥？仅在您重置或更换了摄像机时这样做。</translation>
    </message>
</context>
<context>
    <name>CameraSetUp</name>
    <message>
        <source>Camera Setup</source>
        <translation>摄像机设置</translation>
    </message>
    <message>
        <source>Camera Settings</source>
        <translation>摄像机参数</translation>
    </message>
    <message>
        <source>Device Location</source>
        <translation>设备位置</translation>
    </message>
    <message>
        <source>HttpPort</source>
        <translation>HTTP 端口</translation>
    </message>
    <message>
        <source>Assigned IP Address Manually</source>
        <translation>手动分配 IP 地址</translation>
    </message>
    <message>
        <source>IP</source>
        <translation>IP</translation>
    </message>
    <message>
        <source>Mask</source>
        <translation>掩码</translation>
    </message>
    <message>
        <source>Default Getway</source>
        <translation>默认网关</translation>
    </message>
    <message>
        <source>Assigned DNS Manually</source>
        <translation>手动分配 DNS</translation>
    </message>
    <message>
        <source>Primary DNS</source>
        <translation>首选 DNS</translation>
    </message>
    <message>
        <source>Sencondary DNS</source>
        <translation>备用 DNS</translation>
    </message>
    <message>
        <source>User Name</source>
        <translation>用户名</translation>
    </message>
    <message>
        <source>Password</source>
        <translation>密码</translation>
    </message>
    <message>
        <source>Query</source>
        <translation>查询</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>应用</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>退出</translation>
    </message>
    <message>
        <source>DeviceName</source>
        <translation>设备名称</translation>
    </message>
</context>
<context>
    <name>Duration</name>
    <message>
        <source>less than 1 min</source>
        <translation>不到 1 分钟</translation>
    </message>
    <message>
        <source>%1 min</source>
        <translation>%1 分钟</translation>
    </message>
    <message>
        <source>%1 h %2 min</source>
        <translation>%1 小时 %2 分钟</translation>
    </message>
</context>
<context>
    <name>LiveView</name>
    <message>
        <source> is connecting...</source>
        <translation> 正在连接...</translation>
    </message>
    <message>
        <source>%1 is not being recorded: the album folder cannot be written, or the disk is full.</source>
        <translation>%1 未在录像：相册文件夹无法写入，或磁盘已满。</translation>
    </message>
</context>
<context>
    <name>Motion_Dialog</name>
    <message>
        <source>Motion Settings</source>
        <translation>移动侦测设置</translation>
    </message>
    <message>
        <source>Query</source>
        <translation>查询</translation>
    </message>
    <message>
        <source>Apply</source>
        <translation>应用</translation>
    </message>
    <message>
        <source>Exit</source>
        <translation>退出</translation>
    </message>
    <message>
        <source>Please wait for query motion information...</source>
        <translation>正在查询移动侦测信息，请稍候...</translation>
    </message>
    <message>
        <source>Please wait for apply motion settings...</source>
        <translation>正在应用移动侦测设置，请稍候...</translation>
    </message>
    <message>
        <source>info</source>
        <translation>信息</translation>
    </message>
    <message>
        <source>Some error happens. Please wait a few minutes and re-try.</source>
        <translation>发生错误。请等待几分钟后重试。</translation>
    </message>
</context>
<context>
    <name>NetworkFormCheck</name>
    <message>
        <source>Device Name input invalid!</source>
        <translation>设备名称输入无效！</translation>
    </message>
    <message>
        <source>Device Name is too long!</source>
        <translation>设备名称过长！</translation>
    </message>
    <message>
        <source>Location input invalid!</source>
        <translation>位置输入无效！</translation>
    </message>
    <message>
        <source>Location is too long!</source>
        <translation>位置过长！</translation>
    </message>
    <message>
        <source>Http Port input invalid!</source>
        <translation>HTTP 端口输入无效！</translation>
    </message>
    <message>
        <source>Http Port out of range!</source>
        <translation>HTTP 端口超出范围！</translation>
    </message>
    <message>
        <source>invalid IP or Mask!</source>
        <translation>IP 或掩码无效！</translation>
    </message>
</context>
<context>
    <name>Reason</name>
    <message>
        <source>%1 is not found. Is the camera on, and in this network?</source>
        <translation>找不到 %1。摄像机是否已开机并在此网络中？</translation>
    </message>
    <message>
        <source>No answer from %1. Is the camera on?</source>
        <translation>%1 没有应答。摄像机是否已开机？</translation>
    </message>
    <message>
        <source>%1 takes no connection. Is the port right, and RTSP switched on in the camera?</source>
        <translation>%1 不接受连接。端口是否正确，摄像机的 RTSP 是否已启用？</translation>
    </message>
    <message>
        <source>The camera refuses this user name or password. Correct them with &quot;Modify&quot;.</source>
        <translation>摄像机拒绝此用户名或密码。请用“修改”更正。</translation>
    </message>
    <message>
        <source>The camera refuses this user name or password. The next try is in %1, so that the camera does not lock the account. Correct them with &quot;Modify&quot;.</source>
        <translation>摄像机拒绝此用户名或密码。为避免帐户被锁定，将在 %1后重试。请用“修改”更正。</translation>
    </message>
    <message>
        <source>The camera does not play %1. Is ONVIF switched on in the camera?</source>
        <translation>摄像机无法播放 %1。摄像机的 ONVIF 是否已启用？</translation>
    </message>
    <message>
        <source>The camera offers no picture. Is video switched on in the camera?</source>
        <translation>摄像机不提供画面。摄像机的视频是否已启用？</translation>
    </message>
    <message>
        <source>The camera sends %1, which cannot be shown. Set it to H.264, H.265 or MJPEG.</source>
        <translation>摄像机发送 %1，无法显示。请将其设为 H.264、H.265 或 MJPEG。</translation>
    </message>
    <message>
        <source>%1 has ended the stream. It is started again.</source>
        <translation>%1 已结束视频流，正在重新启动。</translation>
    </message>
    <message>
        <source>No pictures come from %1. The stream is started again.</source>
        <translation>没有收到 %1 的画面，正在重新启动视频流。</translation>
    </message>
    <message>
        <source>%1 does not answer as a camera. Is the port right?</source>
        <translation>%1 的应答不像摄像机。端口是否正确？</translation>
    </message>
    <message>
        <source>%1 shows another TLS key than before: it is another camera, or was reset, or someone pretends to be it. A right click lets you trust the new key.</source>
        <translation>%1 的 TLS 密钥与以前不同：可能换了摄像机、被重置，或有人冒充。右键单击可信任新密钥。</translation>
    </message>
    <message>
        <source>The camera does not answer. Is it on?</source>
        <translation>摄像机没有应答。是否已开机？</translation>
    </message>
    <message>
        <source>%1 answers, but not over TLS. Is the port right?</source>
        <translation>%1 有应答，但不是 TLS。端口是否正确？</translation>
    </message>
</context>
<context>
    <name>SearchCameraForm</name>
    <message>
        <source>Search Camera</source>
        <translation>搜索摄像机</translation>
    </message>
    <message>
        <source>Select Camera</source>
        <translation>选择摄像机</translation>
    </message>
    <message>
        <source>Cameras on the network</source>
        <translation>网络中的摄像机</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>取消</translation>
    </message>
    <message>
        <source>Search again</source>
        <translation>重新搜索</translation>
    </message>
</context>
<context>
    <name>SearchCameraListForm</name>
    <message>
        <source>Cameras on the network</source>
        <translation>网络中的摄像机</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>搜索</translation>
    </message>
    <message>
        <source>Browser</source>
        <translation>浏览器</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>清除</translation>
    </message>
    <message>
        <source>Setup</source>
        <translation>设置</translation>
    </message>
</context>
<context>
    <name>SelectionDialog</name>
    <message>
        <source>Select Camera</source>
        <translation>选择摄像机</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>关闭</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>确定</translation>
    </message>
</context>
<context>
    <name>SettingsNotice</name>
    <message>
        <source>%1 cannot be read: its cameras are missing here.</source>
        <translation>无法读取 %1：其中的摄像机未显示。</translation>
    </message>
    <message>
        <source>%1 has a gap in its numbers: the cameras after it are missing here.</source>
        <translation>%1 中的编号不连续：其后的摄像机未显示。</translation>
    </message>
    <message>
        <source>Changes cannot be saved in %1.</source>
        <translation>无法将更改保存到 %1。</translation>
    </message>
    <message>
        <source>Some texts cannot be saved whole in %1.</source>
        <translation>部分文本无法完整保存到 %1。</translation>
    </message>
</context>
<context>
    <name>StoredText</name>
    <message>
        <source>%1: too long to be saved. Please enter a shorter text.</source>
        <translation>%1：太长，无法保存。请输入较短的文本。</translation>
    </message>
    <message>
        <source>%1: has characters that cannot be saved on this system.</source>
        <translation>%1：含有此系统无法保存的字符。</translation>
    </message>
</context>
<context>
    <name>StreamDetails</name>
    <message>
        <source>Picture: %1, %2x%3, by %4</source>
        <translation>画面：%1，%2x%3，通过 %4</translation>
    </message>
    <message>
        <source>Sound: %1</source>
        <translation>声音：%1</translation>
    </message>
    <message>
        <source>Frames: %1 received, %2 drawn, %3 left out</source>
        <translation>帧：收到 %1，显示 %2，略过 %3</translation>
    </message>
    <message>
        <source>Packets: %1 received, %2 lost</source>
        <translation>数据包：收到 %1，丢失 %2</translation>
    </message>
    <message>
        <source>Jitter %1 ms, delay %2 ms</source>
        <translation>抖动 %1 ms，延迟 %2 ms</translation>
    </message>
    <message>
        <source>Decoder: %1</source>
        <translation>解码器：%1</translation>
    </message>
</context>
<context>
    <name>zelvaro::AlbumView</name>
    <message>
        <source>Error</source>
        <translation>错误</translation>
    </message>
    <message>
        <source>&quot;%1&quot; cannot be deleted.</source>
        <translation>无法删除“%1”。</translation>
    </message>
</context>
<context>
    <name>zelvaro::DiskWatch</name>
    <message>
        <source>The disk of the album has %1 left.</source>
        <translation>相册所在磁盘还剩 %1。</translation>
    </message>
    <message>
        <source>The disk of the album has %1 left. The running recordings fit for %2.</source>
        <translation>相册所在磁盘还剩 %1，正在进行的录像还可保存 %2。</translation>
    </message>
</context>
<context>
    <name>zelvaro::LiveNotice</name>
    <message>
        <source>No picture since %1</source>
        <translation>自 %1 起无画面</translation>
    </message>
    <message>
        <source>%1: no picture yet</source>
        <translation>%1：尚无画面</translation>
    </message>
    <message>
        <source>not recorded</source>
        <translation>未录制</translation>
    </message>
</context>
<context>
    <name>zelvaro::MotionWindowBox</name>
    <message>
        <source>Detection Window: %1</source>
        <translation>侦测窗口：%1</translation>
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
        <translation>阈值</translation>
    </message>
    <message>
        <source>Sensitivity</source>
        <translation>灵敏度</translation>
    </message>
</context>
</TS>
