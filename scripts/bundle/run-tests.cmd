@echo off
rem Runs every test program of this folder and sums up what they say. Start it as an administrator.
rem   run-tests.cmd [/q]    /q: doesn't wait for a key at the end
rem Each program's output goes to results\NAME.txt and, for machines, to results\NAME.xml.
setlocal enableextensions
pushd "%~dp0"
set ZOLVANE_TEST_DATA=testdata
if exist results rmdir /s /q results
mkdir results
call :describe_system >results\system.txt 2>&1
reg add HKLM\Software\ZolvaneTest /f >nul 2>&1
if errorlevel 1 (
  echo This isn't an administrator's prompt: tests that write to HKEY_LOCAL_MACHINE will fail.
) else (
  reg delete HKLM\Software\ZolvaneTest /f >nul 2>&1
)

set /a all_passed=0
set /a all_failed=0
set /a all_skipped=0
for %%t in (tests\*_tests.exe) do call :run %%~nt
echo.
if %all_passed%%all_failed%==00 set /a all_failed+=1
set total=%all_passed% passed, %all_failed% failed, %all_skipped% skipped
echo %total%
echo %total%>results\total.txt
popd
if /i not "%~1"=="/q" pause
if %all_failed%==0 exit /b 0
exit /b 1

rem What decides which tests are skipped.
:describe_system
ver
tzutil /g
echo.
reg query "HKCU\Control Panel\International" /v LocaleName
goto :eof

rem run NAME: a program that fails without naming a failed test, or ends without a result, counts as
rem one failed test.
:run
set passed=0
set failed=0
set skipped=0
tests\%1.exe --gtest_output=xml:results\%1.xml >results\%1.txt 2>&1
set code=%errorlevel%
for /f "usebackq tokens=2,4,6" %%a in ("results\%1.txt") do (
  if "%%a"=="PASSED" set passed=%%b
  if "%%a %%c"=="FAILED listed" set failed=%%b
  if "%%a %%c"=="SKIPPED listed" set skipped=%%b
)
set remark=
if not "%code%"=="0" if "%failed%"=="0" (
  set failed=1
  set remark=, ended with %code%
)
if "%passed%%failed%%skipped%"=="000" (
  set failed=1
  set remark=, ended before it had a result
)
echo %1: %passed% passed, %failed% failed, %skipped% skipped%remark%
set /a all_passed+=passed
set /a all_failed+=failed
set /a all_skipped+=skipped
goto :eof
