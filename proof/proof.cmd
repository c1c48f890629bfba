@echo off
rem Proves the program on this machine and leaves report-COMPUTER.zip beside this file. READ-ME.txt says more.
rem   proof.cmd /disposable [/steps "NAME NAME..."] [/cut-network]   a new run, of all steps or of some
rem   proof.cmd /continue                                            goes on after a restart, or where a run was cut off
rem With /cut-network also the card that may be the line to this machine is bound anew.
setlocal
set "MORVIX_PROOF=%~dp0"
set "MORVIX_PROOF=%MORVIX_PROOF:~0,-1%"
set "report=%MORVIX_PROOF%\report"
set "MORVIX_PROOF_RESULTS=%report%\results"
set "archive=%MORVIX_PROOF%\report-%COMPUTERNAME%.zip"
set "MORVIX_PROOF_STEPS="
set "disposable="
set "continue="
set "cut_network="
set "MORVIX_CUT_NETWORK="
set "runonce=HKLM\SOFTWARE\Microsoft\Windows\CurrentVersion\RunOnce"

:argument
if "%~1"=="" goto decide
if /i "%~1"=="/disposable" goto is_disposable
if /i "%~1"=="/continue" goto is_continued
if /i "%~1"=="/steps" goto has_steps
if /i "%~1"=="/cut-network" goto cuts_network
echo proof.cmd: "%~1" is unknown. READ-ME.txt has the options.
exit /b 2
:is_disposable
set "disposable=1"
shift
goto argument
:is_continued
set "continue=1"
shift
goto argument
:has_steps
set "MORVIX_PROOF_STEPS=%~2"
shift
shift
goto argument
:cuts_network
set "cut_network=1"
shift
goto argument

:decide
if defined continue goto may_start
if defined disposable goto may_start
echo proof.cmd changes this machine: it installs drivers, services and packages, and restarts it.
echo Run it on a machine that is thrown away, or put back to a snapshot, afterwards, and say so:
echo     proof.cmd /disposable
exit /b 2

:may_start
cd /d "%MORVIX_PROOF%"
proof_tools.exe elevated
if "%errorlevel%"=="0" goto elevated
if "%errorlevel%"=="4" goto not_elevated
echo proof.cmd: proof_tools.exe does not run here. Unpack the whole bundle to a local folder of a 64-bit Windows.
exit /b 2
:not_elevated
echo proof.cmd needs the rights of an administrator: start it from a prompt that was opened with "Run as administrator".
exit /b 4

:elevated
if defined continue goto go_on
if exist "%report%\state.txt" goto earlier_run
echo Checking the files of the bundle
proof_tools.exe sums
if not "%errorlevel%"=="0" goto damaged
if not exist "%MORVIX_PROOF_RESULTS%" mkdir "%MORVIX_PROOF_RESULTS%"
if not exist "%report%\logs" mkdir "%report%\logs"
proof_tools.exe facts "%report%\facts.txt"
proof_tools.exe state "%report%\machine-before.txt"
proof_tools.exe picture "%report%\before.bmp"
proof_tools.exe begin
if not "%errorlevel%"=="0" exit /b 2
goto steps
:earlier_run
echo proof.cmd: the folder "report" is that of an earlier run. Go on with it: proof.cmd /continue
echo Or remove the folder, and begin anew.
exit /b 2
:damaged
echo proof.cmd: these files of the bundle are not those that were packed. Unpack it once more.
exit /b 3
:go_on
if exist "%report%\state.txt" goto steps
echo proof.cmd: there is no run that could go on. Begin one: proof.cmd /disposable
exit /b 2

rem Whatever ends the machine meanwhile, the next logon of this administrator goes on.
:steps
set "MORVIX_DISPOSABLE=1"
if defined cut_network echo allowed>"%report%\cut-network.txt"
if exist "%report%\cut-network.txt" set "MORVIX_CUT_NETWORK=1"
schtasks /create /f /tn MorvixProof /sc onlogon /rl highest /tr "cmd /c \"\"%MORVIX_PROOF%\proof.cmd\" /continue\"" >nul 2>nul
if not "%errorlevel%"=="0" reg add "%runonce%" /v MorvixProof /t REG_SZ /d "cmd /c \"\"%MORVIX_PROOF%\proof.cmd\" /continue\"" /f >nul
set "turns=0"
:next
rem A step that cannot even be recorded must not be tried for ever.
set /a turns+=1
if %turns% gtr 200 goto over
proof_tools.exe step
if "%errorlevel%"=="0" goto next
if "%errorlevel%"=="1" goto over
if "%errorlevel%"=="3010" goto restart
if "%errorlevel%"=="6" exit /b 6
rem The program that runs the steps has crashed itself: the next call finds the step begun, and goes on after it.
goto next

:restart
echo The machine restarts. Log on as the same administrator: the run goes on by itself.
proof_tools.exe restart
if not "%errorlevel%"=="0" echo proof.cmd: restart the machine by hand.
exit /b 0

:over
rem What a step leaves when its limit ends it.
schtasks /delete /f /tn morvix-proof >nul 2>nul
net share morvix-proof /delete /y >nul 2>nul
net user morvix-proof /delete >nul 2>nul
schtasks /delete /f /tn MorvixProof >nul 2>nul
reg delete "%runonce%" /v MorvixProof /f >nul 2>nul
proof_tools.exe facts "%report%\facts-after.txt"
proof_tools.exe state "%report%\machine-after.txt"
proof_tools.exe compare "%report%\machine-before.txt" "%report%\machine-after.txt" "%report%\changes.txt"
proof_tools.exe logs "%report%\logs"
proof_tools.exe picture "%report%\after.bmp"
proof_tools.exe pack "%report%" "%archive%"
if not "%errorlevel%"=="0" exit /b 5
echo Done. Send back "%archive%"
exit /b 0
