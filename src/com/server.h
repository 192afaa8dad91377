// What every in-process COM server of the project shares (Windows only):
// class factories and registration. The component (zarvik.dll) and the
// tests' ADO server both use it.
#ifndef ZARVIK_COM_SERVER_H_
#define ZARVIK_COM_SERVER_H_

#include <windows.h>

#include <functional>
#include <string>
#include <vector>

namespace zarvik::com {

struct ServerClass {
  GUID clsid;
  std::string prog_id;  // e.g. "ZARVIK.CLSFW_PARSER"
  std::string description;
  // A new instance, queried for `riid`.
  std::function<HRESULT(REFIID riid, void** out)> create;
};

// DllGetClassObject over the server's classes.
HRESULT GetClassObject(const std::vector<ServerClass>& classes, REFCLSID clsid, REFIID riid,
                       void** out);

// The file of the module (DLL) this code is linked into.
std::wstring ModulePath();

// Registration under HKLM\Software\Classes, or HKCU\Software\Classes when
// `per_user`: for each class CLSID\{clsid} (its description) with
// InprocServer32 (this module, ThreadingModel Apartment), ProgID and, with a
// `libid`, TypeLib; and the ProgID key with its CLSID. Unregistering removes
// exactly these keys; a ProgID key only while it still names our CLSID.
HRESULT RegisterClasses(const std::vector<ServerClass>& classes, const GUID* libid, bool per_user,
                        bool install);

// DllInstall's command line: "user" (any case) asks for per-user
// registration (regsvr32 /n /i:user).
bool PerUserCommandLine(const wchar_t* command_line);

}  // namespace zarvik::com

#endif  // ZARVIK_COM_SERVER_H_
