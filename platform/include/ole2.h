// COM with OLE automation.
#pragma once

#include <objbase.h>
#include <oleauto.h>
