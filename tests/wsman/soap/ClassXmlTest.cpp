// Classes as CIM-XML.
#include "Sample.h"

#include <soap/ClassXml.h>

#include <quillet-simulator/Machine.h>

#include <gtest/gtest.h>

namespace quillet::tests {

namespace {

using wsman::MessageError;
using wsman::XmlDocument;
using wsman::XmlWriter;

std::string XmlOf(const wmi::ClassDefinition& definition, LCID locale = 0) {
    XmlWriter xml;
    wsman::WriteClass(xml, definition, locale);
    return xml.Take();
}

wmi::ClassDefinition ClassIn(const std::string& xml) {
    const XmlDocument document(xml);
    return wsman::ReadClass(document.Root());
}

void ExpectSameProperties(const std::vector<wmi::Property>& left, const std::vector<wmi::Property>& right) {
    ASSERT_EQ(left.size(), right.size());
    for (std::size_t i = 0; i < left.size(); ++i) {
        EXPECT_EQ(left[i].name, right[i].name);
        EXPECT_EQ(left[i].type, right[i].type) << wmi::CimTypeText(left[i].type, L"");
        EXPECT_EQ(left[i].referenceClass, right[i].referenceClass);
        EXPECT_EQ(left[i].origin, right[i].origin);
        EXPECT_EQ(left[i].arrayLimit, right[i].arrayLimit);
        EXPECT_TRUE(left[i].defaultValue == right[i].defaultValue);
        EXPECT_EQ(left[i].qualifiers.All().size(), right[i].qualifiers.All().size());
        EXPECT_EQ(left[i].IsKey(), right[i].IsKey());
    }
}

TEST(ClassXmlTest, EveryClassOfTheSchema_ComesBack) {
    const auto machine = simulator::Machine::Empty();
    const std::vector<wmi::ClassPtr> classes = machine->Store().Classes();
    EXPECT_GT(classes.size(), 40u);
    for (const wmi::ClassPtr& each : classes) {
        SCOPED_TRACE(testing::PrintToString(each->name));
        const wmi::ClassDefinition read = ClassIn(XmlOf(*each));
        EXPECT_EQ(read.name, each->name);
        EXPECT_EQ(read.superclass, each->superclass);
        EXPECT_EQ(read.ancestors, each->ancestors);
        EXPECT_EQ(read.IsAssociation(), each->IsAssociation());
        ExpectSameProperties(read.properties, each->properties);
        ASSERT_EQ(read.methods.size(), each->methods.size());
        for (std::size_t i = 0; i < read.methods.size(); ++i) {
            EXPECT_EQ(read.methods[i].name, each->methods[i].name);
            EXPECT_EQ(read.methods[i].returnsVoid, each->methods[i].returnsVoid);
            EXPECT_EQ(read.methods[i].returnType, each->methods[i].returnType);
            ExpectSameProperties(read.methods[i].in, each->methods[i].in);
            ExpectSameProperties(read.methods[i].out, each->methods[i].out);
        }
        EXPECT_EQ(XmlOf(read), XmlOf(*each));
    }
}

TEST(ClassXmlTest, WhatIsNotKnown_IsPassedOver) {
    const wmi::ClassDefinition read =
        ClassIn("<x:CLASS xmlns:x='urn:x' NAME='A' NEW='1'><NEW/><PROPERTY.NEW NAME='Z'/>"
                "<x:PROPERTY NAME='B' TYPE='uint16'><QUALIFIER NAME='KEY' "
                "TYPE='boolean'><VALUE>true</VALUE></QUALIFIER>"
                "</x:PROPERTY><METHOD NAME='C'><PARAMETER NAME='D' TYPE='string'/></METHOD></x:CLASS>");
    ASSERT_EQ(read.properties.size(), 1u);
    EXPECT_TRUE(read.properties[0].IsKey());
    EXPECT_EQ(read.properties[0].type, CIMTYPE(CIM_UINT16));
    ASSERT_EQ(read.methods.size(), 1u);
    EXPECT_TRUE(read.methods[0].returnsVoid);
    EXPECT_EQ(read.methods[0].in.size(), 1u);
}

TEST(ClassXmlTest, WhatIsNoClass_IsRefused) {
    EXPECT_THROW(ClassIn("<CLASS/>"), MessageError);
    EXPECT_THROW(ClassIn("<CLASS NAME='a b'/>"), MessageError);
    EXPECT_THROW(ClassIn("<CLASS NAME='A' SUPERCLASS=''/>"), MessageError);
    EXPECT_THROW(ClassIn("<CLASS NAME='A'><PROPERTY NAME='B'/></CLASS>"), MessageError);
    EXPECT_THROW(ClassIn("<CLASS NAME='A'><PROPERTY NAME='B' TYPE='number'/></CLASS>"), MessageError);
    EXPECT_THROW(
        ClassIn("<CLASS NAME='A'><PROPERTY NAME='B' TYPE='uint8'><VALUE>999</VALUE></PROPERTY></CLASS>"),
        MessageError);
    EXPECT_THROW(
        ClassIn("<CLASS NAME='A'><PROPERTY NAME='B' TYPE='uint8'/><PROPERTY NAME='b' TYPE='uint8'/></CLASS>"),
        MessageError);
}

} // namespace

} // namespace quillet::tests
