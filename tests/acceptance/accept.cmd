@echo off
rem Tries kemba on this machine and hands on the exit status; README.txt says what it does.
setlocal
"%~dp0acceptance.exe"
set status=%errorlevel%
rem A double click starts this file by its whole path, and its window would close with what it shows.
set line=%cmdcmdline%
set line 2>nul | "%SystemRoot%\System32\find.exe" /i "%~f0" >nul
if not errorlevel 1 pause
exit /b %status%
