// Storing and finding: keys, paths, classes, what is refused.
#include "SmallSchema.h"

namespace quillet::tests {
namespace {

class RepositoryStore : public RepositoryFixture {
  protected:
    std::wstring Found(const wchar_t* path) const {
        const InstancePtr instance = m_repository.FindInstance(path);
        return instance ? RelativePath(*instance) : L"";
    }
};

TEST_F(RepositoryStore, FindsByEveryFormOfAPath) {
    ASSERT_EQ(PutDevice(L"Dev \"1\""), 0);
    for (const wchar_t* path :
         {LR"(T_Device.DeviceID="Dev \"1\"")", LR"(t_device.DEVICEID='dev "1"')", LR"(T_Device='Dev "1"')",
          LR"(\\HOST\ROOT\Test:T_Device.DeviceID='Dev "1"')", LR"(\\.\root\test:T_Device.DeviceID='Dev "1"')",
          LR"(//host/root/test:T_Device.DeviceID='Dev "1"')", LR"(ROOT\Test:T_Device.DeviceID='Dev "1"')"}) {
        EXPECT_EQ(Found(path), LR"(T_Device.DeviceID="Dev \"1\"")") << ToUtf8(path);
    }
    for (const wchar_t* path :
         {L"T_Device.DeviceID='Dev 1'", L"T_Device.Name='Dev \"1\"'", L"T_Device", L"T_Device=@",
          LR"(\\OTHER\ROOT\Test:T_Device.DeviceID='Dev "1"')", LR"(ROOT\Other:T_Device.DeviceID='Dev "1"')",
          L"T_Device.DeviceID='Dev \"1\"',Speed=5", L"X_Device.DeviceID='Dev \"1\"'", L"T_Device.DeviceID=1",
          L"no path at all", L""}) {
        EXPECT_EQ(Found(path), L"") << ToUtf8(path);
    }
}

TEST_F(RepositoryStore, TakesKeysInAnyOrderAndByValue) {
    Compile("instance of T_Numbered { Number = 10; Flag = TRUE; };");
    for (const wchar_t* path : {L"T_Numbered.Number=10,Flag=TRUE", L"T_Numbered.flag=true,NUMBER=0xA",
                                L"T_Numbered.Number=\"10\",Flag=TRUE"}) {
        EXPECT_EQ(Found(path), L"T_Numbered.Number=10,Flag=TRUE") << ToUtf8(path);
    }
    for (const wchar_t* path :
         {L"T_Numbered.Number=11,Flag=TRUE", L"T_Numbered.Number=10,Flag=FALSE", L"T_Numbered.Number=10",
          L"T_Numbered=10", L"T_Numbered.Number=-10,Flag=TRUE", L"T_Numbered.Number=4294967306,Flag=TRUE",
          L"T_Numbered.Number=\"ten\",Flag=TRUE", L"T_Numbered.Number=10,Flag=\"TRUE\""}) {
        EXPECT_EQ(Found(path), L"") << ToUtf8(path);
    }
}

TEST_F(RepositoryStore, TakesKeysOfEverySortOfNumber) {
    Compile("class T_Signed { [Key] sint32 Number; }; class T_Lettered { [Key] char16 Letter; };"
            "instance of T_Signed { Number = -5; }; instance of T_Signed { Number = 5; };"
            "instance of T_Lettered { Letter = 'x'; };");
    for (const wchar_t* path : {L"T_Signed.Number=-5", L"T_Signed=-5", L"T_Signed.Number=\"-5\""}) {
        EXPECT_EQ(Found(path), L"T_Signed.Number=-5") << ToUtf8(path);
    }
    EXPECT_EQ(Found(L"T_Signed.Number=5"), L"T_Signed.Number=5");
    EXPECT_EQ(Found(L"T_Signed.Number=4"), L"");
    const std::wstring letter = L"T_Lettered.Letter=" + std::to_wstring(int{L'x'});
    for (const std::wstring& path : {letter, std::wstring(L"T_Lettered.Letter='x'")}) {
        EXPECT_EQ(Found(path.c_str()), letter) << ToUtf8(path);
    }
    for (const wchar_t* path :
         {L"T_Lettered.Letter='y'", L"T_Lettered.Letter='xx'", L"T_Lettered.Letter=''"}) {
        EXPECT_EQ(Found(path), L"") << ToUtf8(path);
    }
}

TEST_F(RepositoryStore, AnInstanceOfNoClassHasNoPath) {
    EXPECT_EQ(RelativePath(Instance()), L"");
}

TEST_F(RepositoryStore, RefusesClassesWithNamesThatAreNone) {
    const auto refused = [this](ClassDefinition definition) {
        std::wstring reason;
        EXPECT_EQ(m_repository.AddClass(std::move(definition), &reason), Code(WBEM_E_INVALID_CLASS));
        return reason;
    };
    ClassDefinition definition;
    definition.name = L"T_New";
    definition.properties.emplace_back().name = L"two words";
    EXPECT_EQ(refused(definition), L"'two words' is no property name");
    definition.properties.clear();
    definition.methods.emplace_back().name = L"5th";
    EXPECT_EQ(refused(definition), L"'5th' is no method name");
    definition.methods.front().name = L"Run";
    definition.methods.front().in.emplace_back().name = L"";
    EXPECT_EQ(refused(definition), L"method 'Run': '' is no property name");
    EXPECT_EQ(m_repository.FindClass(L"T_New"), nullptr);
}

TEST_F(RepositoryStore, ComparesReferenceKeysByTheObjectTheyName) {
    Compile(R"(instance of T_Member { Group = "T_Device.DeviceID=\"g\""; Part = "T_Device='p'"; };)");
    const std::wstring path = LR"(T_Member.Group="T_Device.DeviceID=\"g\"",Part="T_Device='p'")";
    for (const wchar_t* form :
         {LR"(T_Member.Group="T_Device.DeviceID=\"g\"",Part="T_Device.DeviceID=\"p\"")",
          LR"(T_Member.Part='T_Device="P"',Group='T_Device.DeviceID="g"')",
          LR"(T_Member.Group="\\\\HOST\\ROOT\\Test:T_Device.DeviceID=\"g\"",Part='t_device.deviceid="p"')",
          LR"(T_Member.Group="T_FastDevice.DeviceID=\"g\"",Part='T_Device="p"')"}) {
        EXPECT_EQ(Found(form), path) << ToUtf8(form);
    }
    EXPECT_EQ(Found(LR"(T_Member.Group="T_Device='p'",Part="T_Device='g'")"), L"");
    EXPECT_EQ(Found(LR"(T_Member.Group="ROOT\\Other:T_Device='g'",Part="T_Device='p'")"), L"");
}

TEST_F(RepositoryStore, DoesNotConfuseKeysThatJoinAlike) {
    Compile("class T_Pair { [Key] string A; [Key] string B; };");
    const auto put = [this](const wchar_t* a, const wchar_t* b) {
        Instance pair = New(L"T_Pair");
        pair.Set(L"A", Value::Text(a));
        pair.Set(L"B", Value::Text(b));
        return m_repository.PutInstance(pair, WriteMode::CreateOnly);
    };
    EXPECT_EQ(put(L"1;1:2", L"3"), 0);
    EXPECT_EQ(put(L"1", L"2;1:3"), 0);
    EXPECT_EQ(put(L"", L"1"), 0);
    EXPECT_EQ(put(L"1", L""), 0);
    EXPECT_EQ(m_repository.Instances(L"T_Pair").size(), 4u);
}

TEST_F(RepositoryStore, FindsSingletons) {
    Compile("instance of T_Service { };");
    EXPECT_EQ(Found(L"T_Service=@"), L"T_Service=@");
    EXPECT_EQ(Found(LR"(\\HOST\ROOT\Test:t_service=@)"), L"T_Service=@");
    EXPECT_EQ(Found(L"T_Service"), L"");
    EXPECT_EQ(Found(L"T_Service.State='Running'"), L"");
    EXPECT_EQ(m_repository.FullPath(*m_repository.FindInstance(L"T_Service=@")),
              LR"(\\HOST\ROOT\Test:T_Service=@)");
}

TEST_F(RepositoryStore, SharesKeysBetweenTheClassesOfAFamily) {
    ASSERT_EQ(PutDevice(L"1", L"T_FastDevice"), 0);
    EXPECT_EQ(Found(L"T_Device='1'"), L"T_FastDevice.DeviceID=\"1\"");
    ASSERT_EQ(PutDevice(L"2"), 0);
    EXPECT_EQ(Found(L"T_FastDevice='2'"), L"");
    EXPECT_EQ(PutDevice(L"1"), Code(WBEM_E_ALREADY_EXISTS));
}

TEST_F(RepositoryStore, WritesInThreeModes) {
    Instance device = New(L"T_Device");
    device.Set(L"DeviceID", Value::Text(L"1"));
    EXPECT_EQ(m_repository.PutInstance(device, WriteMode::UpdateOnly), Code(WBEM_E_NOT_FOUND));
    EXPECT_EQ(m_repository.PutInstance(device, WriteMode::CreateOnly), 0);
    EXPECT_EQ(m_repository.PutInstance(device, WriteMode::CreateOnly), Code(WBEM_E_ALREADY_EXISTS));
    device.Set(L"Speed", Value::Unsigned(5));
    EXPECT_EQ(m_repository.PutInstance(device, WriteMode::UpdateOnly), 0);
    EXPECT_EQ(m_repository.FindInstance(L"T_Device='1'")->Number(L"Speed"), 5);
    EXPECT_EQ(m_repository.PutInstance(device), 0);
    EXPECT_EQ(m_repository.AllInstances().size(), 1u);
}

TEST_F(RepositoryStore, HandsOutWhatAChangeDoesNotTouch) {
    ASSERT_EQ(PutDevice(L"1"), 0);
    const InstancePtr before = m_repository.FindInstance(L"T_Device='1'");
    Instance changed = *before;
    changed.Set(L"Speed", Value::Unsigned(7));
    ASSERT_EQ(m_repository.PutInstance(changed), 0);
    EXPECT_EQ(before->Number(L"Speed"), 1000);
    EXPECT_EQ(m_repository.FindInstance(L"T_Device='1'")->Number(L"Speed"), 7);
}

TEST_F(RepositoryStore, RefusesInstancesThatCannotBe) {
    std::wstring reason;
    EXPECT_EQ(m_repository.PutInstance(Instance(), WriteMode::CreateOrUpdate, &reason),
              Code(WBEM_E_INVALID_OBJECT));
    EXPECT_EQ(m_repository.PutInstance(New(L"T_Device"), WriteMode::CreateOrUpdate, &reason),
              Code(WBEM_E_INVALID_OBJECT));
    EXPECT_EQ(reason, L"key 'DeviceID' has no value");
    EXPECT_EQ(m_repository.PutInstance(New(L"T_Element"), WriteMode::CreateOrUpdate, &reason),
              Code(WBEM_E_INVALID_OBJECT));
    EXPECT_EQ(reason, L"class 'T_Element' is abstract");
    Instance device = New(L"T_Device");
    device.Set(L"DeviceID", Value::Text(L"1"));
    device.Set(L"Speed", Value::Text(L"fast"));
    EXPECT_EQ(m_repository.PutInstance(device, WriteMode::CreateOrUpdate, &reason),
              Code(WBEM_E_TYPE_MISMATCH));
    EXPECT_EQ(reason, L"the value of property 'Speed' does not fit uint32");
    device.Set(L"Speed", Value::Signed(-1));
    EXPECT_EQ(m_repository.PutInstance(device), Code(WBEM_E_TYPE_MISMATCH));
    device.Set(L"Speed", Value());
    device.Set(L"Peer", Value::Text(L"no path"));
    EXPECT_EQ(m_repository.PutInstance(device, WriteMode::CreateOrUpdate, &reason),
              Code(WBEM_E_INVALID_OBJECT));
    EXPECT_THAT(ToUtf8(reason), ::testing::HasSubstr("no object path"));
    device.Set(L"Peer", Value());
    device.values.pop_back();
    EXPECT_EQ(m_repository.PutInstance(device), Code(WBEM_E_INVALID_OBJECT));
    Repository other(L"HOST", L"ROOT\\Test");
    CompileMof(other, kSchema, "schema.mof");
    Instance foreign(other.FindClass(L"T_Device"));
    foreign.Set(L"DeviceID", Value::Text(L"1"));
    EXPECT_EQ(m_repository.PutInstance(foreign), Code(WBEM_E_INVALID_OBJECT));
    EXPECT_TRUE(m_repository.AllInstances().empty());
}

TEST_F(RepositoryStore, HoldsFixedArraysToTheirSize) {
    Compile("class T_Fixed { [Key] string Id; uint8 Pair[2]; };");
    Instance fixed = New(L"T_Fixed");
    fixed.Set(L"Id", Value::Text(L"1"));
    fixed.Set(L"Pair", Value(Value::Array(2, Scalar(std::uint64_t{1}))));
    EXPECT_EQ(m_repository.PutInstance(fixed), 0);
    fixed.Set(L"Pair", Value(Value::Array(3, Scalar(std::uint64_t{1}))));
    EXPECT_EQ(m_repository.PutInstance(fixed), Code(WBEM_E_TYPE_MISMATCH));
}

TEST_F(RepositoryStore, DeletesOnce) {
    ASSERT_EQ(PutDevice(L"1"), 0);
    const ObjectPath path = *ObjectPath::Parse(L"T_Device='1'");
    EXPECT_EQ(m_repository.DeleteInstance(path), 0);
    EXPECT_EQ(m_repository.DeleteInstance(path), Code(WBEM_E_NOT_FOUND));
    EXPECT_EQ(m_repository.DeleteInstance(*ObjectPath::Parse(L"None='1'")), Code(WBEM_E_NOT_FOUND));
    EXPECT_FALSE(m_repository.FindInstance(path));
    EXPECT_TRUE(m_repository.Instances(L"T_Device").empty());
}

TEST_F(RepositoryStore, EnumeratesInTheOrderOfCreation) {
    PutDevice(L"3");
    PutDevice(L"1", L"T_FastDevice");
    PutDevice(L"2");
    PutDevice(L"3");
    const auto ids = [](const std::vector<InstancePtr>& instances) {
        std::vector<std::wstring> result;
        for (const InstancePtr& instance : instances) {
            result.push_back(instance->Text(L"DeviceID"));
        }
        return result;
    };
    EXPECT_THAT(ids(m_repository.Instances(L"t_device")), ::testing::ElementsAre(L"3", L"1", L"2"));
    EXPECT_THAT(ids(m_repository.Instances(L"T_Device", true)), ::testing::ElementsAre(L"3", L"2"));
    EXPECT_THAT(ids(m_repository.Instances(L"T_Element")), ::testing::ElementsAre(L"3", L"1", L"2"));
    EXPECT_TRUE(m_repository.Instances(L"None").empty());
    EXPECT_EQ(m_repository.AllInstances().size(), 3u);
}

TEST_F(RepositoryStore, CountsItsChanges) {
    const std::uint64_t before = m_repository.Generation();
    PutDevice(L"1");
    const std::uint64_t created = m_repository.Generation();
    EXPECT_GT(created, before);
    EXPECT_EQ(m_repository.PutInstance(New(L"T_Device")), Code(WBEM_E_INVALID_OBJECT));
    EXPECT_EQ(m_repository.Generation(), created);
    m_repository.DeleteInstance(*ObjectPath::Parse(L"T_Device='1'"));
    EXPECT_GT(m_repository.Generation(), created);
}

TEST_F(RepositoryStore, TellsClassesInOrderWithTheirSubclasses) {
    const auto names = [](const std::vector<ClassPtr>& classes) {
        std::vector<std::wstring> result;
        for (const ClassPtr& definition : classes) {
            result.push_back(definition->name);
        }
        return result;
    };
    EXPECT_THAT(names(m_repository.Classes()),
                ::testing::ElementsAre(L"T_Element", L"T_Device", L"T_FastDevice", L"T_Numbered",
                                       L"T_Service", L"T_Member", L"T_Next"));
    EXPECT_THAT(names(m_repository.ClassAndSubclasses(L"t_element")),
                ::testing::ElementsAre(L"T_Element", L"T_Device", L"T_FastDevice"));
    EXPECT_TRUE(m_repository.ClassAndSubclasses(L"None").empty());
    EXPECT_EQ(m_repository.FindClass(L"T_DEVICE")->name, L"T_Device");
    EXPECT_FALSE(m_repository.FindClass(L"None"));
}

TEST_F(RepositoryStore, RefusesClassesThatCannotBe) {
    std::wstring reason;
    ClassDefinition definition;
    definition.name = L"t_device";
    EXPECT_EQ(m_repository.AddClass(definition, &reason), Code(WBEM_E_ALREADY_EXISTS));
    definition.name = L"New";
    definition.superclass = L"None";
    EXPECT_EQ(m_repository.AddClass(definition, &reason), Code(WBEM_E_INVALID_SUPERCLASS));
    EXPECT_EQ(reason, L"unknown superclass 'None'");
    definition.superclass.clear();
    definition.name = L"not a name";
    EXPECT_EQ(m_repository.AddClass(definition), Code(WBEM_E_INVALID_CLASS));
    definition.name = L"New";
    Property property;
    property.name = L"p";
    property.type = CIM_UINT8;
    property.defaultValue = Value::Unsigned(256);
    definition.properties.push_back(property);
    EXPECT_EQ(m_repository.AddClass(definition), Code(WBEM_E_INVALID_CLASS));
    definition.properties[0].defaultValue = Value::Signed(5);
    EXPECT_EQ(m_repository.AddClass(definition), 0);
    EXPECT_EQ(m_repository.FindClass(L"New")->properties[0].defaultValue, Value::Unsigned(5));
    definition.name = L"New2";
    definition.properties[0].type = CIM_OBJECT;
    EXPECT_EQ(m_repository.AddClass(definition), Code(WBEM_E_INVALID_CLASS));
}

TEST_F(RepositoryStore, KnowsWhichPathsNameOneObject) {
    const auto same = [this](const wchar_t* left, const wchar_t* right) {
        return m_repository.SameObject(left, right);
    };
    EXPECT_TRUE(same(L"T_Device='a'", LR"(\\HOST\ROOT\Test:T_Device.DeviceID="A")"));
    EXPECT_TRUE(same(L"T_Device='a'", LR"(\\OTHER\ROOT\Test:T_FastDevice.DeviceID="a")"));
    EXPECT_FALSE(same(L"T_Device='a'", L"T_Device='b'"));
    EXPECT_FALSE(same(L"T_Device='a'", LR"(ROOT\Other:T_Device='a')"));
    EXPECT_TRUE(same(L"Unknown.a=1,b=2", L"UNKNOWN.B=2,A=1"));
    EXPECT_FALSE(same(L"Unknown.a=1", L"Unknown.a='1'"));
    EXPECT_TRUE(same(L"T_Device", L"ROOT\\test:t_device"));
    EXPECT_FALSE(same(L"T_Device", L"T_FastDevice"));
    EXPECT_TRUE(same(L"no path", L"NO PATH"));
}

TEST_F(RepositoryStore, ShowsReferencesAsFullPaths) {
    PutDevice(L"a");
    EXPECT_EQ(m_repository.ReferenceText(L"t_device='A'"), LR"(\\HOST\ROOT\Test:T_Device.DeviceID="a")");
    EXPECT_EQ(m_repository.ReferenceText(L"T_Device='none'"), LR"(\\HOST\ROOT\Test:T_Device="none")");
    EXPECT_EQ(m_repository.ReferenceText(LR"(ROOT\x:C=@)"), LR"(\\HOST\ROOT\x:C=@)");
    EXPECT_EQ(m_repository.ReferenceText(LR"(\\S\ROOT\x:C=@)"), LR"(\\S\ROOT\x:C=@)");
    EXPECT_EQ(m_repository.ReferenceText(L"no path"), L"no path");
}

TEST_F(RepositoryStore, BoundsTheDepthOfReferencesInReferences) {
    Compile("class T_Deep { [Key] T_Deep REF Inner; };");
    std::wstring path = L"T_Deep='x'";
    for (int i = 0; i < 12; ++i) {
        ObjectPath outer;
        outer.className = L"T_Deep";
        outer.keys.push_back({L"Inner", path});
        path = outer.Relative();
    }
    EXPECT_FALSE(m_repository.FindInstance(path));
    EXPECT_TRUE(m_repository.SameObject(path, path));
}

} // namespace
} // namespace quillet::tests
