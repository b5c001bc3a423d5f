// CIM values as XML, and back.
#pragma once

#include "soap/Addressing.h"
#include "soap/XmlReader.h"
#include "soap/XmlWriter.h"

#include <quillet-wmi/Model.h>

#include <span>
#include <string_view>

namespace quillet::wsman {

/// How datetimes are written.
enum class DateTimeForm {
    Xml, ///< as Windows answers
    Cim  ///< as Windows takes them: the 25 characters
};

/// How an array that is null is told from one that is empty, which has no element at all.
enum class NullArrays {
    LikeScalars, ///< an element that is nil; so is an array of one null. What is missing may be null as well
    Marked       ///< "m:IsNullArray" says so: both ends have agreed on it. What is missing is empty
};

/// Writes a property or a parameter: an element, an element for each element of an array, none for an empty
/// array. What is null is an element that says so.
/// @param prefix of the class's namespace; empty: none
void WriteValue(XmlWriter& xml, std::string_view prefix, const wmi::Property& property,
                const wmi::Value& value, const Namespace& space, DateTimeForm form,
                NullArrays arrays = NullArrays::LikeScalars);

/// Reads a property or a parameter from all elements of its name; the type is the schema's to say, for the
/// wire does not. No element is null. Throws MessageError for what is no value of the type.
wmi::Value ReadValue(std::span<const Element> elements, const wmi::Property& property,
                     const Namespace& space);

/// Writes all properties of an instance that are not among those left out.
void WriteProperties(XmlWriter& xml, std::string_view prefix, const wmi::Instance& instance,
                     const Namespace& space, DateTimeForm form, NullArrays arrays = NullArrays::LikeScalars);
/// Whether an array among the child elements is marked as null.
bool MarksNullArrays(const Element& holder);
/// Reads the child elements of `holder` into the properties of their names, without regard to case. Throws
/// MessageError for a value that does not fit and, if `unknown` is not taken, for a property of no such name.
enum class Unknown { Ignored, Refused };
wmi::Instance ReadProperties(const wmi::ClassPtr& definition, Element holder, const Namespace& space,
                             Unknown unknown, NullArrays arrays = NullArrays::LikeScalars);

} // namespace quillet::wsman
