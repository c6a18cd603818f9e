@echo off
rem Installs for the current user alone. /quiet: don't wait for a key at the end.
setlocal EnableExtensions DisableDelayedExpansion
set "source=%~dp0"
set "quiet=%~1"
set "target=%LOCALAPPDATA%\Halvora\Publish to Flickr"
set "system=%SystemRoot%\System32"
if defined PROCESSOR_ARCHITEW6432 set "system=%SystemRoot%\Sysnative"
set failed=

if not defined LOCALAPPDATA (
    echo Windows doesn't say where programs of this user belong: LOCALAPPDATA is not set.
    goto failure
)
if /i "%PROCESSOR_ARCHITECTURE%"=="x86" if not defined PROCESSOR_ARCHITEW6432 (
    echo This is for 64-bit Windows; this Windows is a 32-bit one.
    goto failure
)
for %%F in (@HALVORA_MODULES@@HALVORA_PROGRAMS@ uninstall.cmd ReadMe.txt) do call :find %%F
if defined failed (
    echo Unpack the whole zip, with "Extract All...", and start install.cmd there.
    goto failure
)

set fresh=
if not exist "%target%\uninstall.cmd" set fresh=yes
if not exist "%target%" mkdir "%target%"
for %%F in (@HALVORA_MODULES@@HALVORA_PROGRAMS@ uninstall.cmd ReadMe.txt) do call :place %%F
if defined failed (
    echo Is Halvora still open? Close it and start install.cmd again.
    goto failure
)
if not exist "%target%\Licences" mkdir "%target%\Licences"
copy /y "%source%Licences\*" "%target%\Licences" >nul

for %%M in (@HALVORA_MODULES@) do call :register %%M
if defined failed goto undo

rem The Start menu, and Windows' list of installed apps. Without them it works all the same.
"%target%\HalvoraPublish.exe" --shell-entries add
if errorlevel 1 echo Windows can't add it to the Start menu and the installed apps; the program is HalvoraPublish.exe there.

echo Halvora Publish to Flickr @PROJECT_VERSION@ is installed in
echo "%target%"
echo Start Halvora and choose "Publish to Flickr", or "Halvora Publish to Flickr" in the Start menu.
if /i not "%quiet%"=="/quiet" pause
exit /b 0

:find
if not exist "%source%%1" (
    echo %1 is missing.
    set failed=yes
)
goto :eof

:place
copy /y "%source%%1" "%target%\%1" >nul
if errorlevel 1 (
    echo "%target%\%1" can't be written.
    set failed=yes
)
goto :eof

:register
if defined failed goto :eof
"%system%\regsvr32.exe" /s /n /i:user "%target%\%1"
if errorlevel 1 (
    echo Windows can't register %1.
    set failed=yes
)
goto :eof

rem A first installation that fails is removed completely; a failed update leaves its files in place.
:undo
if defined fresh call "%source%uninstall.cmd" /quiet >nul 2>nul
:failure
echo Halvora Publish to Flickr is NOT installed.
if /i not "%quiet%"=="/quiet" pause
exit /b 1
