// Operations on link security.
#include "Connection.h"

namespace quillet::python {

void DefineLinkSecurity(pybind11::class_<Connection>& session) {
    Define(session, "read_manual_keys", &Session::ReadManualKeys);
    Define(session, "set_manual_keys", &Session::SetManualKeys);
    Define(session, "read_authentication", &Session::ReadAuthentication);
    Define(session, "set_authentication", &Session::SetAuthentication);
    Define(session, "read_authentication_methods", &Session::ReadAuthenticationMethods);
    Define(session, "import_pac", &Session::ImportPac);
    Define(session, "delete_pac", &Session::DeletePac);
    Define(session, "read_pac", &Session::ReadPac);
    Define(session, "read_master_key", &Session::ReadMasterKey);
    Define(session, "set_master_key", &Session::SetMasterKey);
    Define(session, "read_saved_credentials", &Session::ReadSavedCredentials);
    Define(session, "read_security_log", &Session::ReadSecurityLog);
}

} // namespace quillet::python
