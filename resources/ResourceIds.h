// Numbers of the texts, of the dialog and of its controls: what the program asks for. Resource scripts include this
// file, so it holds macros only. Missing numbers have no text.

#define IDS_WELCOME 1
#define IDS_FCOE_BOOT_TOO_OLD 2
#define IDS_INSTALL_FAILED 3
#define IDS_NOT_READY 4
#define IDS_NO_ADAPTER 5
#define IDS_WINDOWS_NT_UNSUPPORTED 6
#define IDS_SYSTEM_UNSUPPORTED 7
#define IDS_ADMINISTRATOR_NEEDED 8
#define IDS_DONE 9
#define IDS_INSTALLING 10
#define IDS_CLOSE_MANAGEMENT_SOFTWARE 13
#define IDS_CANCEL 15
#define IDS_RESTORE_POINT 17
#define IDS_ADVICE 20
#define IDS_WORKING 21
#define IDS_RESTART_QUESTION 22
#define IDS_RESTART_COUNTDOWN 23
#define IDS_SOME_FAILED 24
#define IDS_CAPTION 1008

#define IDD_PROGRESS 101
#define IDC_STATUS_TEXT 1000
#define IDC_FINISH 1002
#define IDC_RESTART_NOW 1004
#define IDC_RESTART_LATER 1007
#define IDC_ACTIVITY 1010
#define IDC_NONE 0xFFFF
