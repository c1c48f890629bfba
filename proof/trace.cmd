@echo off
rem trace.cmd FILE: a silent run of the program that restarts nothing; what it traces goes into the file.
set "key=HKLM\SOFTWARE\Norda\Basedrivers\Debug"
reg add "%key%" /f >nul
tests\debugview.exe "%~1" dist\Morvix.exe /s /nr
set "code=%errorlevel%"
reg delete "%key%" /f >nul
exit /b %code%
