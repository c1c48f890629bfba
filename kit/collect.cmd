@echo off
rem Writes what decides about drivers on this machine into one file: PCI devices, system version, product options,
rem processor, code page and storage controllers. Changes nothing and needs nothing but reg.exe.
rem   collect.cmd [FILE]     without FILE: %COMPUTERNAME%.reg in the current folder
setlocal
set "failed=no"
set "out=%~1"
if "%out%"=="" set "out=%COMPUTERNAME%.reg"
set "part=%TEMP%\collect-%RANDOM%-%RANDOM%.reg"
rem On a 64-bit system a 32-bit command processor asks for the system's own view, where reg.exe knows how.
set "view="
if not defined PROCESSOR_ARCHITEW6432 goto known
reg query HKLM\SOFTWARE /reg:64 >nul 2>nul
if not errorlevel 1 set "view=/reg:64"
:known
set "ccs=HKEY_LOCAL_MACHINE\SYSTEM\CurrentControlSet"
rem A file that stays cannot be written either. Nothing but this one file is deleted, not even with a pattern for a name.
if exist "%out%\*" goto nothing
for %%f in ("%out%") do if "%%~f"=="%out%" if exist "%out%" del "%out%" >nul 2>nul
if exist "%out%" goto nothing
rem The first of the joined parts; each of them begins with a header of its own.
>"%out%" echo REGEDIT4
if not exist "%out%" goto nothing
call :key "%ccs%\Enum\PCI"
call :key "%ccs%\Control\ProductOptions"
call :key "%ccs%\Control\Class\{4D36E97B-E325-11CE-BFC1-08002BE10318}"
call :key "HKEY_LOCAL_MACHINE\SYSTEM\Select"
rem Single values of large keys, in the older form of the format.
>"%part%" echo REGEDIT4
if not exist "%part%" goto nopart
call :values "%ccs%\Control\Session Manager\Environment" PROCESSOR_ARCHITECTURE
call :values "%ccs%\Control\Windows" CSDVersion
call :values "%ccs%\Control\Nls\CodePage" ACP
call :values "%ccs%\Control\ComputerName\ComputerName" ComputerName
set "names=CurrentVersion CurrentMajorVersionNumber CurrentMinorVersionNumber CurrentBuildNumber CSDVersion"
call :values "HKEY_LOCAL_MACHINE\SOFTWARE\Microsoft\Windows NT\CurrentVersion" "%names% ProductName InstallationType"
call :values "HKEY_LOCAL_MACHINE\SOFTWARE\Norda\Network_Services\TERN" OEMVersion
call :join
if "%failed%"=="yes" goto nothing
echo Written: %out%
exit /b 0

:nothing
echo collect.cmd: "%out%" cannot be written. 1>&2
exit /b 1

:nopart
echo collect.cmd: "%part%" cannot be written. 1>&2
exit /b 1

rem A key with everything below it; one that is missing is left out.
:key
if exist "%part%" del "%part%"
reg export %1 "%part%" %view% >nul 2>nul
call :join
goto :eof

:join
if not exist "%part%" goto :eof
for %%f in ("%out%") do set "before=%%~zf"
copy /b "%out%"+"%part%" "%out%" >nul
for %%f in ("%out%") do if "%%~zf"=="%before%" set "failed=yes"
del "%part%"
goto :eof

:values
>>"%part%" echo [%~1]
for %%n in (%~2) do for /f "tokens=1,2,*" %%a in ('reg query %1 /v %%n %view% 2^>nul') do call :value %%a %%b "%%c"
goto :eof

:value
set "data=%~3"
if "%2"=="REG_SZ" >>"%part%" echo "%1"="%data%"
if "%2"=="REG_DWORD" >>"%part%" echo "%1"=dword:%data:~2%
goto :eof
