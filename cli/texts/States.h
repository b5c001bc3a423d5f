// States of adapters, teams and VLANs: their words, and how the reader may take them.
#pragma once

#include <quillet/client/Adapter.h>

#include <cstdint>
#include <optional>
#include <string>

namespace quilletctl {

/// What a state is to the reader, who may see it by its colour as well; the words always say it, too.
enum class Tone : std::uint8_t { Plain, Good, Warning, Bad };

Tone ToneOf(quillet::StatusInfo status) noexcept;

/// Whether an adapter has a link; nothing where it does not tell.
std::optional<bool> IsUp(const std::optional<quillet::AdapterState>& state) noexcept;
/// Whether any of two has a link; nothing where that cannot be told.
std::optional<bool> IsAnyUp(std::optional<bool> one, std::optional<bool> other) noexcept;
/// "up" or "down"; empty where the adapter does not tell.
std::string LinkText(const std::optional<quillet::AdapterState>& state);
Tone LinkTone(const std::optional<quillet::AdapterState>& state) noexcept;

} // namespace quilletctl
