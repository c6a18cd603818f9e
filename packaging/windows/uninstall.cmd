@echo off
rem Removes what install.cmd installed for the current user. The settings stay. /quiet: don't wait for
rem a key at the end.
setlocal EnableExtensions DisableDelayedExpansion
set "quiet=%~1"
set "target=%LOCALAPPDATA%\Halvora\Publish to Flickr"
set "system=%SystemRoot%\System32"
if defined PROCESSOR_ARCHITEW6432 set "system=%SystemRoot%\Sysnative"
set failed=

if not exist "%target%" (
    echo Halvora Publish to Flickr is not installed for this user.
    if /i not "%quiet%"=="/quiet" pause
    exit /b 0
)
for %%M in (@HALVORA_MODULES@) do call :unregister %%M
if exist "%target%\HalvoraPublish.exe" "%target%\HalvoraPublish.exe" --shell-entries remove
for %%F in (@HALVORA_MODULES@@HALVORA_PROGRAMS@ ReadMe.txt) do call :remove %%F
if defined failed (
    echo Is Halvora still open? Close it and start uninstall.cmd again.
    echo Halvora Publish to Flickr is NOT removed.
    if /i not "%quiet%"=="/quiet" pause
    exit /b 1
)
rem The account that HalvoraPublish.exe kept, which holds the permission to publish, and its journal of what was published.
for %%F in (init-data.bin init-data.bin.new lock) do del /f /q "%LOCALAPPDATA%\Halvora\%%F" 2>nul
del /f /q "%LOCALAPPDATA%\Halvora\init-data.bin.damaged-*" "%LOCALAPPDATA%\Halvora\journal.db*" 2>nul
echo Halvora Publish to Flickr is removed; its settings stay.
if /i not "%quiet%"=="/quiet" pause

if /i not "%~dp0"=="%target%\" (
    rmdir /s /q "%target%"
    rmdir "%LOCALAPPDATA%\Halvora" 2>nul
    exit /b 0
)
rem This file lies in the folder that must be removed. "(goto)" makes cmd forget the script: it reads no further
rem line of it, but still runs the rest of this one. Leave the folder first, or it can't be removed.
(goto) 2>nul & cd /d "%SystemRoot%" & rmdir /s /q "%target%" & rmdir "%LOCALAPPDATA%\Halvora" 2>nul & cmd /c exit 0
rem Only Wine's cmd, which keeps its scripts open, reaches this line.
cd /d "%SystemRoot%"
rmdir /s /q "%target%"
exit /b 0

:unregister
if not exist "%target%\%1" goto :eof
"%system%\regsvr32.exe" /s /u /n /i:user "%target%\%1"
if errorlevel 1 echo Windows can't take back the registration of %1.
goto :eof

:remove
if not exist "%target%\%1" goto :eof
del /f /q "%target%\%1" 2>nul
if exist "%target%\%1" (
    echo "%target%\%1" can't be deleted.
    set failed=yes
)
goto :eof
