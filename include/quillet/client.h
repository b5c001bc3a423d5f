// The client layer: sessions, transactions, and what they read and change, as values and exceptions.
#pragma once

#include <quillet/client/Error.h>
#include <quillet/client/ProviderTexts.h>
#include <quillet/client/Secret.h>
#include <quillet/client/Session.h>
