// What class providers ask the store again and again, and the making of object IDs.
#pragma once

#include <quillet-simulator/Repository.h>

namespace quillet::simulator {

/// The relative path of an instance by its only key.
std::wstring PathByKey(const wchar_t* className, const wchar_t* key, const std::wstring& value);

/// The instances of a class, and of those below it, that have this text in a property. Served by an index.
std::vector<InstancePtr> InstancesWhere(const Repository& store, const wchar_t* className,
                                        const wchar_t* property, const std::wstring& text);

/// The associations of a class that refer to the object which a path names; none when there is no such
/// object.
std::vector<InstancePtr> ReferencesTo(const Repository& store, const std::wstring& path,
                                      const wchar_t* className);

/// An object ID (GUID text in braces) that no instance of the class has as its key. It follows from the seed
/// and from what is there, so that a machine which is changed in the same way twice looks the same twice.
std::wstring NewObjectId(const Repository& store, const wchar_t* className, const wchar_t* key,
                         const std::wstring& seed);

} // namespace quillet::simulator
