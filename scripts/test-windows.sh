#!/usr/bin/env bash
# The Windows build under Wine: builds both DLLs (scripts/build-windows.sh),
# makes a fresh prefix under build-win64/, registers the 64-bit DLL and the
# tests' ADO server there, runs the VBScript suite and the early-binding
# client on the demo database, and checks registration per machine and per
# user. The last line is "N passed, M failed"; the script fails unless it is
# there with M = 0. (Wine's cscript ends with 0 even after a script error:
# the suite's own summary line is what counts.)
set -uo pipefail
cd "$(dirname "$0")/.."
bash scripts/build-windows.sh || exit 1
root=$PWD
out=$root/build-win64/wine-test
rm -rf "$out"
mkdir -p "$out/odbc"
export WINEPREFIX=$out/prefix WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" DISPLAY=""
# The SQLite ODBC driver in an odbcinst.ini of the tests' own.
export ODBCSYSINI=$out/odbc
driver=$(ls /usr/lib/*/odbc/libsqlite3odbc.so | head -n 1)
printf '[ZarvikSQLite]\nDescription=SQLite3 ODBC driver of the Windows tests\nDriver=%s\n' \
  "$driver" >"$out/odbc/odbcinst.ini"
build/zarvik init-db "$out/demo.db" >/dev/null || exit 1
cs="Driver={ZarvikSQLite};Database=$out/demo.db"
cp build-win64/zarvik.dll build-win64/zarvik_test_ado.dll build-win64/early_client.exe \
  tests/com/win/suite.vbs "$out/"
cd "$out"
timeout 300 wineboot -i >/dev/null 2>&1

passed=0
failed=0
check() {
  if [ "$2" = "$3" ]; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    echo "FAIL $1: '$2', expected '$3'"
  fi
}
# Adds a program's own "N passed, M failed" to the totals and shows its
# other lines; a program that ends without that line counts as one failure.
tally() {
  local last
  last=$(tr -d '\r' <"$2" | tail -n 1)
  tr -d '\r' <"$2" | grep -v '^[0-9]* passed, [0-9]* failed$'
  if [[ $last =~ ^([0-9]+)\ passed,\ ([0-9]+)\ failed$ ]]; then
    passed=$((passed + BASH_REMATCH[1]))
    failed=$((failed + BASH_REMATCH[2]))
  else
    failed=$((failed + 1))
    echo "FAIL $1 ended without its summary line"
  fi
}
value() { wine reg query "$1" /v "$2" 2>/dev/null | tr -d '\r' | awk -v n="$2" '$1 == n {print $3}'; }
default() { wine reg query "$1" /ve 2>/dev/null | tr -d '\r' | awk '/REG_SZ/ {print $NF}'; }
classes() { wine reg export 'HKLM\Software\Classes' "$1" /y >/dev/null 2>&1; }
parser='{7FA209A4-2775-5A89-9FA8-5041BA8B3306}'

wine regsvr32 /s zarvik_test_ado.dll
check "test ADO registered" "$(default 'HKLM\Software\Classes\ADODB.Connection\CLSID')" \
  '{32DF4973-CD28-5A97-A43D-0C5661EF0AD7}'
classes before.reg
wine regsvr32 /s zarvik.dll
check "regsvr32 zarvik.dll" $? 0
check "ProgID" "$(default 'HKLM\Software\Classes\ZARVIK.CLSFW_PARSER\CLSID')" "$parser"
check "ThreadingModel" "$(value "HKLM\\Software\\Classes\\CLSID\\$parser\\InprocServer32" \
  ThreadingModel)" Apartment
wine regsvr32 /s /u zarvik.dll
classes after.reg
check "regsvr32 /u removes what it wrote" "$(cmp -s before.reg after.reg && echo same)" same

wine regsvr32 /s zarvik.dll
timeout 300 wine cscript //nologo suite.vbs "$cs" >suite.out 2>&1
tally "VBScript suite" suite.out
timeout 300 wine early_client.exe "$cs" "$(winepath -w "$root/build-win32/zarvik.dll")" \
  >client.out 2>&1
tally "early-binding client" client.out
wine regsvr32 /s /u zarvik.dll

wine regsvr32 /s /n /i:user zarvik.dll
check "per-user ProgID" "$(default 'HKCU\Software\Classes\ZARVIK.CLSFW_PARSER\CLSID')" "$parser"
check "per-user leaves the machine's" "$(default 'HKLM\Software\Classes\ZARVIK.CLSFW_PARSER\CLSID')" ""
wine regsvr32 /s /u /n /i:user zarvik.dll
check "per-user unregistered" "$(wine reg query 'HKCU\Software\Classes' /s 2>/dev/null |
  grep -ci -e zarvik -e "${parser:1:8}")" 0
wineserver -k 2>/dev/null

# The 32-bit DLL (what a VB host loads): its exports here, its type library
# in the early-binding client above.
exports=$(i686-w64-mingw32-objdump -p "$root/build-win32/zarvik.dll" |
  awk '/^\[Ordinal\/Name Pointer\] Table/ {on = 1; next} on && NF == 3 {print $3} on && !NF {on = 0}' |
  tr '\n' ' ')
check "32-bit exports" "$exports" \
  "DllCanUnloadNow DllGetClassObject DllInstall DllRegisterServer DllUnregisterServer "
check "32-bit format" "$(i686-w64-mingw32-objdump -f "$root/build-win32/zarvik.dll" |
  grep -o 'pei-i386' | head -n 1)" pei-i386
if ! dpkg-query -W -f='${Status}' wine32:i386 2>/dev/null | grep -q "install ok installed"; then
  echo "note: no 32-bit Wine (wine32) here: the 32-bit DLL's exports and type library are checked," \
    "the suite runs against the 64-bit DLL only"
fi

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
