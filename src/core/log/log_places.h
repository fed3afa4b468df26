#pragma once
// The places a log line names after its text: the module and the procedure.
// Support reads logs by these names and compares logs across versions, so
// they stay as they are whatever the code is called; every one is here.
#include <string_view>

namespace vonel::log_places {

// Modules.
inline constexpr std::string_view kAttachmentsModule = "modAttachments";
inline constexpr std::string_view kBayesModule = "frmBayesFilter";
inline constexpr std::string_view kControllerModule = "frmMain";
inline constexpr std::string_view kFolderCacheModule = "CLSCACHE";
inline constexpr std::string_view kMailMergeModule = "frmMailMerge";
inline constexpr std::string_view kMailerModule = "frmMailer";
inline constexpr std::string_view kMessageFilesModule = "modLoadSaveMsg";
inline constexpr std::string_view kMessageModule = "clsMessage";
inline constexpr std::string_view kMimeModule = "modMime";
inline constexpr std::string_view kOutboxModule = "frmSendMailWrapper";
inline constexpr std::string_view kPop3Module = "frmGetMail";
inline constexpr std::string_view kRunnerModule = "frmRunner";
inline constexpr std::string_view kRulesModule = "frmFilters";
inline constexpr std::string_view kSettingsModule = "cSHAREDSettings";
inline constexpr std::string_view kSettingsDialogModule = "frmSettings";
inline constexpr std::string_view kSmtpModule = "clsSendmail";
inline constexpr std::string_view kStoreListerModule = "clsMailer";
inline constexpr std::string_view kStoreModule = "modMailSubs";
inline constexpr std::string_view kWordTableModule = "clsHashTable";

// Procedures.
inline constexpr std::string_view kAddError = "AddError";
inline constexpr std::string_view kAddMessage = "AddMessage";
inline constexpr std::string_view kAddMsgToCache = "AddMsgToCache";
inline constexpr std::string_view kAddToLastMessageTag = "AddToLastMessageTag";
inline constexpr std::string_view kAddToUnreadTag = "AddToUnreadTag";
inline constexpr std::string_view kCancelSend = "CancelSend";
inline constexpr std::string_view kChangeMessageInCacheTags = "ChangeMessageInCacheTags";
inline constexpr std::string_view kCheckMessage = "CheckMessage";
inline constexpr std::string_view kCheckNextAccount = "CheckNextAccount";
inline constexpr std::string_view kCmdGoClick = "cmdGo_Click";
inline constexpr std::string_view kCmdOkClick = "cmdOK_Click";
inline constexpr std::string_view kConnect = "Connect";
inline constexpr std::string_view kConnectToHost = "ConnectToHost";
inline constexpr std::string_view kCreateFromText = "createfromtext";
inline constexpr std::string_view kCreateUnreadTag = "CreateUnreadTag";
inline constexpr std::string_view kDeleteSetting = "DeleteSetting";
inline constexpr std::string_view kDisconnect = "Disconnect";
inline constexpr std::string_view kDoMailMerge = "DoMailMerge";
inline constexpr std::string_view kEncodeAndSendFile = "EncodeAndSendFile";
inline constexpr std::string_view kExitProg = "ExitProg";
inline constexpr std::string_view kExtractPlainMessage = "ExtractPlainMessage";
inline constexpr std::string_view kFGetMailMessageReceived = "fGetMail_MessageReceived";
inline constexpr std::string_view kFGetMailScreenedDelete = "fGetMail_ScreenedDelete";
inline constexpr std::string_view kFGetMailSpecificMessage = "fGetMail_SpecificMessage";
inline constexpr std::string_view kFillCache = "FillCache";
inline constexpr std::string_view kFillMailFolders = "FillMailFolders";
inline constexpr std::string_view kGenerateFilters = "GenerateFilters";
inline constexpr std::string_view kGenerateFolderIni = "GenerateFolderIni";
inline constexpr std::string_view kGenerateTable = "GenerateTable";
inline constexpr std::string_view kGenerateWordHash = "GenerateWordHash";
inline constexpr std::string_view kLoadBlackList = "LoadBlackList";
inline constexpr std::string_view kLoadFilters = "LoadFilters";
inline constexpr std::string_view kLoadList = "LoadList";
inline constexpr std::string_view kLoadSettings = "LoadSettings";
inline constexpr std::string_view kLoadTable = "LoadTable";
inline constexpr std::string_view kMakeNewFolder = "MakeNewFolder";
inline constexpr std::string_view kMarkMessageInCachePriority = "MarkMessageInCachePriority";
inline constexpr std::string_view kMarkMessageInCacheReadUnread = "MarkMessageInCacheReadUnread";
inline constexpr std::string_view kMarkMessageInCacheRepliedOrNot = "MarkMessageInCacheRepliedOrNot";
inline constexpr std::string_view kMoveToSentItems = "MoveToSentItems";
inline constexpr std::string_view kPoSendMailConnected = "poSendMail_Connected";
inline constexpr std::string_view kPoSendMailDisconnected = "poSendMail_Disconnected";
inline constexpr std::string_view kPoSendMailMessageRefused = "poSendMail_MessageRefused";
inline constexpr std::string_view kPoSendMailSendFailed = "poSendMail_SendFailed";
inline constexpr std::string_view kPoSendMailSendSuccessful = "poSendMail_SendSuccessful";
inline constexpr std::string_view kPopulateListView = "PopulateListView";
inline constexpr std::string_view kPopulateQuick = "PopulateQuick";
inline constexpr std::string_view kProcessMail = "ProcessMail";
inline constexpr std::string_view kReadCache = "ReadCache";
inline constexpr std::string_view kReadMessageFull = "ReadMessageFull";
inline constexpr std::string_view kReadOutboxMessage = "ReadOutboxMessage";
inline constexpr std::string_view kRecreateWordHash = "RecreateWordHash";
inline constexpr std::string_view kRemoveFromUnreadTag = "RemoveFromUnreadTag";
inline constexpr std::string_view kRemoveMsgFromCache = "RemoveMsgFromCache";
inline constexpr std::string_view kRemoveUnreadTag = "RemoveUnreadTag";
inline constexpr std::string_view kRescanAllCaches = "RescanAllCaches";
inline constexpr std::string_view kRescanCache = "RescanCache";
inline constexpr std::string_view kRetrieveWithDefault = "RetrieveWithDefault";
inline constexpr std::string_view kSaveFilters = "SaveFilters";
inline constexpr std::string_view kSaveList = "SaveList";
inline constexpr std::string_view kSaveMessage = "SaveMessage";
inline constexpr std::string_view kSckMailDataArrival = "sckMail_DataArrival";
inline constexpr std::string_view kSendFail = "SendFail";
inline constexpr std::string_view kSendRefused = "SendRefused";
inline constexpr std::string_view kSendSpooledMessage = "SendSpooledMessage";
inline constexpr std::string_view kSendmail = "Sendmail";
inline constexpr std::string_view kSetFolderShowFilter = "SetFolderShowFilter";
inline constexpr std::string_view kSetupAccount = "SetupAccount";
inline constexpr std::string_view kSpamminess = "Spamminess";
inline constexpr std::string_view kSpoolToFile = "SpoolToFile";
inline constexpr std::string_view kStartup = "Startup";
inline constexpr std::string_view kSwapStatus = "SwapStatus";
inline constexpr std::string_view kTimerRunner = "TimerRunner";
inline constexpr std::string_view kUIDL = "UIDL";
inline constexpr std::string_view kUpdateFromUnread = "UpdateFromUnread";
inline constexpr std::string_view kUploadSpooledMail = "UploadSpooledMail";
inline constexpr std::string_view kWriteCache = "WriteCache";
inline constexpr std::string_view kWriteFile = "WriteFile";
inline constexpr std::string_view kWriteHashTable = "WriteHashTable";

}  // namespace vonel::log_places
