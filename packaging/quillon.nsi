; The installer for Windows: per user without any rights, for all users on request. scripts/release gives STAGE, the folder
; of the files, ICON, PICTURE of the last page, and OUT, the installer to make.
;
;   /S          silent. Exit codes: 0 done, 2 the files cannot be written, 5 the program does not end, 740 rights are missing
;   /ALLUSERS   for all users
;   /D=FOLDER   where to; comes last and is not quoted
;   uninstall.exe [/S] [/SETTINGS]     /SETTINGS removes the user's settings too
Target amd64-unicode
!include MUI2.nsh
!include LogicLib.nsh
!include FileFunc.nsh

!getdllversion "${STAGE}/quillon.exe" V_
!define VERSION "${V_1}.${V_2}.${V_3}"
!define UNKEY "Software\Microsoft\Windows\CurrentVersion\Uninstall\Quillon"
!define APPPATH "Software\Microsoft\Windows\CurrentVersion\App Paths\quillon.exe"
!define PRODUCT "Software\Norvik\Quillon"
!define CAPS "${PRODUCT}\Capabilities"
!define PROGID "Software\Classes\Quillon.Recording"
!define APPLICATION "Software\Classes\Applications\quillon.exe"

Name "Quillon"
OutFile "${OUT}"
SetCompressor /SOLID lzma
SetDateSave off
RequestExecutionLevel user
ManifestDPIAware true
BrandingText "Quillon ${VERSION}"
ShowInstDetails nevershow
ShowUninstDetails nevershow

Var AllUsers    ; 1: for all users
Var Asked       ; 1: /ALLUSERS was given
Var Given       ; the folder of /D=
Var Before      ; folder of the version that is installed, or empty
Var RadioAll
Var Settings    ; 1: the user's settings go as well
Var CheckBox

!define MUI_ICON "${ICON}"
!define MUI_UNICON "${ICON}"
!define MUI_WELCOMEFINISHPAGE_BITMAP "${PICTURE}"
!define MUI_FINISHPAGE_TITLE "$(T_DONE)"
!define MUI_FINISHPAGE_TEXT "$(T_DONE_MORE)"
!define MUI_FINISHPAGE_RUN
!define MUI_FINISHPAGE_RUN_TEXT "$(T_RUN)"
!define MUI_FINISHPAGE_RUN_FUNCTION RunProgram
Page custom ScopePage ScopeLeave
!insertmacro MUI_PAGE_DIRECTORY
!insertmacro MUI_PAGE_INSTFILES
!insertmacro MUI_PAGE_FINISH
UninstPage custom un.SettingsPage un.SettingsLeave
!insertmacro MUI_UNPAGE_INSTFILES
!insertmacro MUI_LANGUAGE English
!insertmacro MUI_LANGUAGE Russian
!include texts.nsh

VIProductVersion "${VERSION}.0"
VIFileVersion "${VERSION}.0"
!macro VersionText name value
  VIAddVersionKey /LANG=${LANG_ENGLISH} "${name}" "${value}"
!macroend
!insertmacro VersionText CompanyName "Norvik"
!insertmacro VersionText FileDescription "Quillon setup"
!insertmacro VersionText FileVersion "${VERSION}"
!insertmacro VersionText LegalCopyright "© 2026 Norvik"
!insertmacro VersionText ProductName "Quillon"
!insertmacro VersionText ProductVersion "${VERSION}"

; Calls the macro for each extension that the program reads and that others do not use for something else.
!macro EachExtension do
  !insertmacro ${do} edf
  !insertmacro ${do} bdf
  !insertmacro ${do} wav
  !insertmacro ${do} rf64
  !insertmacro ${do} w64
  !insertmacro ${do} aif
  !insertmacro ${do} aiff
  !insertmacro ${do} aifc
  !insertmacro ${do} au
  !insertmacro ${do} snd
  !insertmacro ${do} flac
  !insertmacro ${do} gdf
  !insertmacro ${do} vhdr
  !insertmacro ${do} ahdr
  !insertmacro ${do} hea
  !insertmacro ${do} txt
  !insertmacro ${do} csv
  !insertmacro ${do} tsv
!macroend

; Lists the program under "Open with"; which program opens the files by default is left as it is.
!macro Offer extension
  WriteRegNone SHCTX "Software\Classes\.${extension}\OpenWithProgids" "Quillon.Recording"
  WriteRegStr SHCTX "${CAPS}\FileAssociations" ".${extension}" "Quillon.Recording"
  WriteRegStr SHCTX "${APPLICATION}\SupportedTypes" ".${extension}" ""
!macroend
!macro Withdraw extension
  DeleteRegValue SHCTX "Software\Classes\.${extension}\OpenWithProgids" "Quillon.Recording"
  DeleteRegKey /ifempty SHCTX "Software\Classes\.${extension}\OpenWithProgids"
  DeleteRegKey /ifempty SHCTX "Software\Classes\.${extension}"
!macroend

; Sets the variable to 1 when the word is on the command line.
!macro Option word variable
  ${GetParameters} $9
  ClearErrors
  ${GetOptions} $9 "${word}" $0
  ${IfNot} ${Errors}
    StrCpy ${variable} 1
  ${EndIf}
!macroend

!macro RemoveFiles folder
  Delete "${folder}\quillon.exe"
  Delete "${folder}\quillon-cli.exe"
  Delete "${folder}\KelvoEN.chm"
  Delete "${folder}\Kelvo.chm"
  Delete "${folder}\Kelvo*.chw"      ; left there by the help viewer
  ; The uninstaller goes on in a copy of itself; the process that made the copy may not have ended yet.
  ${For} $4 1 20
    Delete "${folder}\uninstall.exe"
    ${IfNot} ${FileExists} "${folder}\uninstall.exe"
      ${Break}
    ${EndIf}
    Sleep 100
  ${Next}
  RMDir "${folder}"
!macroend

; Tells the shell that the kinds of files have changed.
!macro NotifyShell
  System::Call 'shell32::SHChangeNotify(i 0x08000000, i 0, p 0, p 0)'
!macroend

; Functions for installer and uninstaller.
!macro Shared un
; $0 is 1 when the file in $INSTDIR is not open in any program. Windows of other sessions and of programs with more rights
; are not found by FindWindow, so opening a file for writing is what counts.
Function ${un}IsFree
  Exch $1
  StrCpy $0 1
  ${If} ${FileExists} "$INSTDIR\$1"
    ClearErrors
    FileOpen $2 "$INSTDIR\$1" a
    ${If} ${Errors}
      StrCpy $0 0
    ${Else}
      FileClose $2
    ${EndIf}
  ${EndIf}
  Pop $1
FunctionEnd

; $0 is 1 when no file of the program is open.
Function ${un}AllFree
  StrCpy $3 1
  !insertmacro AddFree "${un}" quillon.exe
  !insertmacro AddFree "${un}" quillon-cli.exe
  !insertmacro AddFree "${un}" KelvoEN.chm
  !insertmacro AddFree "${un}" Kelvo.chm
  StrCpy $0 $3
FunctionEnd

; Returns when no file of the program is open. If one is, asks every window of the program to close and waits for it for
; 10 s; then the user is told, or a silent run ends with 5.
Function ${un}CloseProgram
  ${Do}
    ${For} $4 1 40
      Call ${un}AllFree
      ${If} $0 = 1
        Return
      ${EndIf}
      StrCpy $5 0
      ${Do}
        FindWindow $5 "frmQLMain" "" 0 $5
        ${If} $5 = 0
          ${Break}
        ${EndIf}
        System::Call 'user32::PostMessageW(p $5, i ${WM_CLOSE}, p 0, p 0)'
      ${Loop}
      Sleep 250
    ${Next}
    ${IfNot} ${Cmd} `MessageBox MB_RETRYCANCEL|MB_ICONEXCLAMATION "$(T_BUSY)" /SD IDCANCEL IDRETRY`
      SetErrorLevel 5
      Quit
    ${EndIf}
  ${Loop}
FunctionEnd
!macroend
!macro AddFree un file
  Push ${file}
  Call ${un}IsFree
  IntOp $3 $3 & $0
!macroend
!insertmacro Shared ""
!insertmacro Shared "un."

; Keys and Start menu of the user or of everybody, and the folder. $INSTDIR is empty at the start unless /D= was given.
Function ChooseFolder
  SetShellVarContext current
  StrCpy $0 "$LOCALAPPDATA\Programs\Quillon"
  ${If} $AllUsers = 1
    SetShellVarContext all
    StrCpy $0 "$PROGRAMFILES64\Quillon"
  ${EndIf}
  ReadRegStr $Before SHCTX "${UNKEY}" InstallLocation
  StrCpy $INSTDIR $Given
  ${If} $INSTDIR == ""
    StrCpy $INSTDIR $Before
  ${EndIf}
  ${If} $INSTDIR == ""
    StrCpy $INSTDIR $0
  ${EndIf}
FunctionEnd

; $0 is 1 for an account, or a raised process, with the rights to install for all users.
Function IsAdministrator
  UserInfo::GetAccountType
  Pop $1
  StrCpy $0 0
  ${If} $1 == "Admin"
    StrCpy $0 1
  ${EndIf}
FunctionEnd

Function .onInit
  SetRegView 64
  StrCpy $Given $INSTDIR
  StrCpy $Asked 0
  !insertmacro Option "/ALLUSERS" $Asked
  StrCpy $AllUsers $Asked
  ; A new version takes the place of the old one.
  ReadRegStr $0 HKCU "${UNKEY}" InstallLocation
  ReadRegStr $1 HKLM "${UNKEY}" InstallLocation
  ${If} $0 == ""
  ${AndIf} $1 != ""
    StrCpy $AllUsers 1
  ${EndIf}
  Call ChooseFolder
  ${If} ${Silent}
  ${AndIf} $AllUsers = 1
    Call IsAdministrator
    ${If} $0 = 0
      SetErrorLevel 740
      Quit
    ${EndIf}
  ${EndIf}
FunctionEnd

Function ScopePage
  Call IsAdministrator
  ${If} $Asked = 1
  ${AndIf} $0 = 1
    Abort
  ${EndIf}
  !insertmacro MUI_HEADER_TEXT "$(T_SCOPE)" "$(T_SCOPE_SUB)"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateRadioButton} 0 16u 100% 12u "$(T_ME)"
  Pop $1
  ${NSD_OnClick} $1 ShowShield
  ${NSD_CreateLabel} 12u 29u 280u 20u "$(T_ME_MORE)"
  Pop $2
  ${NSD_CreateRadioButton} 0 60u 100% 12u "$(T_ALL)"
  Pop $RadioAll
  ${NSD_OnClick} $RadioAll ShowShield
  ${NSD_CreateLabel} 12u 73u 280u 20u "$(T_ALL_MORE)"
  Pop $2
  ${If} $AllUsers = 1
    ${NSD_Check} $RadioAll
  ${Else}
    ${NSD_Check} $1
  ${EndIf}
  Push $RadioAll
  Call ShowShield
  nsDialogs::Show
FunctionEnd

; The shield of Windows on "Next" where that asks for more rights.
Function ShowShield
  Pop $0
  ${NSD_GetState} $RadioAll $AllUsers
  Call IsAdministrator
  IntOp $0 $0 ^ 1
  IntOp $0 $0 & $AllUsers
  GetDlgItem $1 $HWNDPARENT 1
  SendMessage $1 0x160C 0 $0      ; BCM_SETSHIELD
FunctionEnd

Function ScopeLeave
  ${NSD_GetState} $RadioAll $AllUsers
  Call IsAdministrator
  ${If} $AllUsers = 1
  ${AndIf} $0 = 0
    StrCpy $1 "/ALLUSERS"
    ${If} $Given != ""
      StrCpy $1 "$1 /D=$Given"
    ${EndIf}
    ClearErrors
    ExecShell "runas" "$EXEPATH" "$1"
    ${If} ${Errors}
      Abort      ; the user said no: the page stays
    ${EndIf}
    Quit
  ${EndIf}
  Call ChooseFolder
FunctionEnd

; Started by the shell, so that it does not inherit the rights of the installer.
Function RunProgram
  Exec '"$WINDIR\explorer.exe" "$INSTDIR\quillon.exe"'
FunctionEnd

Section "Quillon" Program
  Call CloseProgram
  ; Else a silent run passes over what it cannot write. The program itself comes last.
  SetOverwrite try
  ClearErrors
  SetOutPath "$INSTDIR"
  File "${STAGE}/KelvoEN.chm"
  File "${STAGE}/Kelvo.chm"
  File "${STAGE}/quillon-cli.exe"
  File "${STAGE}/quillon.exe"
  WriteUninstaller "$INSTDIR\uninstall.exe"
  ${If} ${Errors}
    SetOutPath "$TEMP"
    ${If} $Before == ""
      !insertmacro RemoveFiles "$INSTDIR"
    ${EndIf}
    MessageBox MB_OK|MB_ICONSTOP "$(T_UNWRITABLE)" /SD IDOK
    Abort
  ${EndIf}
  ${If} $Before != ""
  ${AndIf} $Before != $INSTDIR
    !insertmacro RemoveFiles "$Before"
  ${EndIf}

  ; The shortcut takes $OUTDIR as the folder to start in: not that of the program, which could then not be removed.
  StrCpy $OUTDIR "%USERPROFILE%"
  CreateShortcut "$SMPROGRAMS\Quillon.lnk" "$INSTDIR\quillon.exe"

  WriteRegStr SHCTX "${UNKEY}" DisplayName "Quillon"
  WriteRegStr SHCTX "${UNKEY}" DisplayVersion "${VERSION}"
  WriteRegStr SHCTX "${UNKEY}" Publisher "Norvik"
  WriteRegStr SHCTX "${UNKEY}" DisplayIcon "$INSTDIR\quillon.exe"
  WriteRegStr SHCTX "${UNKEY}" InstallLocation "$INSTDIR"
  WriteRegStr SHCTX "${UNKEY}" UninstallString '"$INSTDIR\uninstall.exe"'
  WriteRegStr SHCTX "${UNKEY}" QuietUninstallString '"$INSTDIR\uninstall.exe" /S'
  WriteRegDWORD SHCTX "${UNKEY}" VersionMajor ${V_1}
  WriteRegDWORD SHCTX "${UNKEY}" VersionMinor ${V_2}
  SectionGetSize ${Program} $0
  WriteRegDWORD SHCTX "${UNKEY}" EstimatedSize $0
  WriteRegDWORD SHCTX "${UNKEY}" NoModify 1
  WriteRegDWORD SHCTX "${UNKEY}" NoRepair 1
  WriteRegStr SHCTX "${APPPATH}" "" "$INSTDIR\quillon.exe"

  WriteRegStr SHCTX "${PROGID}" "" "$(T_TYPE)"
  WriteRegStr SHCTX "${PROGID}\DefaultIcon" "" "$INSTDIR\quillon.exe,0"
  WriteRegStr SHCTX "${PROGID}\shell\open\command" "" '"$INSTDIR\quillon.exe" "%1"'
  WriteRegStr SHCTX "${APPLICATION}" FriendlyAppName "Quillon"
  WriteRegStr SHCTX "${APPLICATION}\shell\open\command" "" '"$INSTDIR\quillon.exe" "%1"'
  WriteRegStr SHCTX "${CAPS}" ApplicationName "Quillon"
  WriteRegStr SHCTX "${CAPS}" ApplicationDescription "$(T_WHAT)"
  WriteRegStr SHCTX "Software\RegisteredApplications" "Quillon" "${CAPS}"
  !insertmacro EachExtension Offer
  WriteRegStr SHCTX "${APPLICATION}\SupportedTypes" ".bin" ""
  !insertmacro NotifyShell
SectionEnd

; Uninstalling.

Function un.onInit
  SetRegView 64
  SetShellVarContext current
  StrCpy $Settings 0
  !insertmacro Option "/SETTINGS" $Settings
  ReadRegStr $0 HKLM "${UNKEY}" InstallLocation
  ${If} $0 == $INSTDIR
    SetShellVarContext all
    UserInfo::GetAccountType
    Pop $1
    ${If} $1 != "Admin"
      ${If} ${Silent}
        SetErrorLevel 740
      ${Else}
        ExecShell "runas" "$INSTDIR\uninstall.exe" "$9"
      ${EndIf}
      Quit
    ${EndIf}
  ${EndIf}
FunctionEnd

Function un.SettingsPage
  !insertmacro MUI_HEADER_TEXT "$(T_REMOVE)" "$(T_REMOVE_SUB)"
  nsDialogs::Create 1018
  Pop $0
  ${NSD_CreateLabel} 0 16u 100% 10u "$(T_FROM)"
  Pop $0
  ${NSD_CreateText} 0 29u 100% 12u "$INSTDIR"
  Pop $0
  SendMessage $0 ${EM_SETREADONLY} 1 0
  ${NSD_CreateLabel} 0 52u 100% 10u "$(T_KEEP)"
  Pop $0
  ${NSD_CreateCheckBox} 0 70u 100% 12u "$(T_SETTINGS)"
  Pop $CheckBox
  ${If} $Settings = 1
    ${NSD_Check} $CheckBox
  ${EndIf}
  nsDialogs::Show
FunctionEnd

Function un.SettingsLeave
  ${NSD_GetState} $CheckBox $Settings
FunctionEnd

Section "Uninstall"
  Call un.CloseProgram
  SetOutPath "$TEMP"
  !insertmacro RemoveFiles "$INSTDIR"
  Delete "$SMPROGRAMS\Quillon.lnk"
  DeleteRegKey SHCTX "${UNKEY}"
  DeleteRegKey SHCTX "${APPPATH}"
  DeleteRegKey SHCTX "${PROGID}"
  DeleteRegKey SHCTX "${APPLICATION}"
  DeleteRegKey SHCTX "${CAPS}"
  DeleteRegValue SHCTX "Software\RegisteredApplications" "Quillon"
  !insertmacro EachExtension Withdraw
  !insertmacro NotifyShell
  DeleteRegKey /ifempty SHCTX "${PRODUCT}"
  DeleteRegKey /ifempty SHCTX "Software\Norvik"
  ${If} $Settings = 1
    ; Settings, and what was told of a crash, are always the user's.
    SetShellVarContext current
    DeleteRegKey HKCU "${PRODUCT}"
    DeleteRegKey /ifempty HKCU "Software\Norvik"
    Delete "$LOCALAPPDATA\Norvik\Quillon\crash*.txt"
    RMDir "$LOCALAPPDATA\Norvik\Quillon"
    RMDir "$LOCALAPPDATA\Norvik"
  ${EndIf}
SectionEnd
