// What files can do that differs between hosts: links, owners, taking each other's place. One implementation
// file per host.
#pragma once

#include <filesystem>
#include <memory>
#include <system_error>

namespace quilletctl {

/// Where the bytes lie that a path leads to: symbolic links are followed, also one that leads to nothing yet.
std::filesystem::path FollowLinks(const std::filesystem::path& file);

/// Gives a file the rights of another, and its owner and group where the host knows them.
std::error_code TakeOverRights(const std::filesystem::path& from, const std::filesystem::path& to);

/// Renames a file over another, in one step: whoever opens that gets the one or the other.
std::error_code MoveOver(const std::filesystem::path& from, const std::filesystem::path& to);
/// Makes MoveOver wait with this file while the result lives, on a host where it could not be opened at that
/// moment.
std::shared_ptr<void> KeepInPlace(const std::filesystem::path& file);

} // namespace quilletctl
