// WMI: the client interfaces (there is no provider side on this host).
#pragma once

#include <wbemcli.h>
