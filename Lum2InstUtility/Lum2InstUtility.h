// Object paths of the provider and the identifiers in them; wide strings with formatting.
#pragma once

#include "EthernetAdapterMgrHelper.h"
#include "LumString.h"
#include "LumWmiObjectPath.h"
