; What the pages of the installer say, in both languages.
!macro Text name english russian
  LangString ${name} ${LANG_ENGLISH} "${english}"
  LangString ${name} ${LANG_RUSSIAN} "${russian}"
!macroend

!insertmacro Text T_SCOPE "Who will use Quillon?" "Кто будет пользоваться Quillon?"
!insertmacro Text T_SCOPE_SUB "Choose for whom Quillon is installed on this computer." \
  "Выберите, для кого установить Quillon на этом компьютере."
!insertmacro Text T_ME "Only &me" "Только &я"
!insertmacro Text T_ME_MORE "No administrator rights are needed." "Права администратора не нужны."
!insertmacro Text T_ALL "&Everybody who uses this computer" "&Все пользователи этого компьютера"
!insertmacro Text T_ALL_MORE "Windows may ask for an administrator's permission." \
  "Windows может запросить разрешение администратора."
!insertmacro Text T_BUSY "Quillon or its help is still in use.$\r$\n$\r$\nClose its dialogs and windows, then try again." \
  "Программа Quillon или её справка ещё используется.$\r$\n$\r$\nЗакройте её окна и повторите попытку."
!insertmacro Text T_UNWRITABLE "The files cannot be written to this folder:$\r$\n$INSTDIR" \
  "Не удаётся записать файлы в папку:$\r$\n$INSTDIR"
!insertmacro Text T_REMOVE "Remove Quillon" "Удаление Quillon"
!insertmacro Text T_REMOVE_SUB "Quillon will be removed from this computer." "Программа Quillon будет удалена с этого компьютера."
!insertmacro Text T_FROM "It is removed from this folder:" "Она будет удалена из папки:"
!insertmacro Text T_KEEP "Your recordings are not touched." "Ваши записи останутся на месте."
!insertmacro Text T_SETTINGS "Remove my &settings too" "Удалить также мои &настройки"
!insertmacro Text T_RUN "&Run Quillon" "&Запустить Quillon"
!insertmacro Text T_DONE "Quillon is installed" "Программа Quillon установлена"
!insertmacro Text T_DONE_MORE "You find it in the Start menu. In Explorer, $\"Open with$\" offers it for recordings." \
  "Она появилась в меню «Пуск». В Проводнике её предлагает для записей команда «Открыть с помощью»."
!insertmacro Text T_TYPE "Signal recording" "Запись сигналов"
!insertmacro Text T_WHAT "A viewer for signal recordings: EEG, ECG, vibration, sound" \
  "Просмотр записей сигналов: ЭЭГ, ЭКГ, вибрация, звук"
