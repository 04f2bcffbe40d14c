#include "tests/host/FakePlugin.h"

#include <functional>

namespace {

using namespace host;
using testing::ElementsAre;
using testing::IsEmpty;

std::int64_t getter(ObjectHandle, std::int64_t) {
    return 0;
}
void setter(ObjectHandle, std::int64_t, std::int64_t) {}
void function(ObjectHandle) {}

/// A class that has a row of every kind and nothing wrong.
struct GoodClass : FakeClass {
    explicit GoodClass(const char *name) : FakeClass(name, 32) {
        properties = {property("size", "Integer", pointer(getter), pointer(setter)),
                      field("Handle", "Integer", 0), field("Last", "Boolean", 31)};
        methods = {method("Constructor", pointer(function)),
                   method("overloaded(a as Integer)", pointer(function)),
                   method("overloaded(a as String)", pointer(function)),
                   method("other as NSOtherZKT", pointer(function))};
        methods[0].flags = 0x84;
        constants = {constantRow("One=1"), constantRow("Two = &h2")};
        sharedMethods = {method("shared as GoodZKT", pointer(function))};
        fill();
    }
};

TEST(Registration, ReadsARecordAndWritesItsDataOffset) {
    GoodClass good("GoodZKT");
    Host host;
    good.registerRecord();
    EXPECT_THAT(host.violations(), IsEmpty());
    EXPECT_THAT(host.registeredRecords(), ElementsAre(&good.record));
    EXPECT_EQ(good.record.dataOffset, 48U);
    const ObjectRef object = host.newInstance("GoodZKT");
    EXPECT_EQ(host.dataOf(object), reinterpret_cast<char *>(object.handle()) + 48);
}

TEST(Registration, ActivityClassHasItsDataElsewhere) {
    FakeClass activity("NSProcessInfoActivityZKT");
    Host host;
    activity.registerClass();
    EXPECT_EQ(activity.record.dataOffset, 64U);
    const ObjectRef object = host.newInstance("NSProcessInfoActivityZKT");
    EXPECT_EQ(host.dataOf(object), reinterpret_cast<char *>(object.handle()) + 64);
}

TEST(Registration, KeepsTheOrder) {
    FakeClass second("SecondZKT");
    FakeClass first("FirstZKT");
    Host host;
    first.registerClass();
    second.registerClass();
    EXPECT_THAT(host.registeredRecords(), ElementsAre(&first.record, &second.record));
}

TEST(Registration, ClassesMayHaveNothing) {
    FakeClass empty("EmptyZKT", 0);
    Host host;
    empty.registerClass();
    EXPECT_THAT(host.violations(), IsEmpty());
    EXPECT_TRUE(host.newObject("EmptyZKT").object());
}

TEST(Registration, OfTheSameClassTwice) {
    GoodClass good("GoodZKT");
    Host host;
    good.registerRecord();
    good.record.dataOffset = 0;
    good.registerRecord();
    EXPECT_THAT(host.violations(),
                ElementsAre("PluginRegisterClass: GoodZKT: the class is registered already"));
    EXPECT_THAT(host.registeredRecords(), testing::SizeIs(1));
}

TEST(Registration, OfAHostClass) {
    FakeClass date("Date");
    Host host;
    date.registerClass();
    EXPECT_THAT(host.violations(),
                ElementsAre("PluginRegisterClass: Date: the class is registered already"));
}

TEST(Registration, OfNoRecord) {
    Host host;
    service<void(PluginClassRecord *)>("PluginRegisterClass")(nullptr);
    EXPECT_THAT(host.violations(), ElementsAre("PluginRegisterClass: got no class record"));
}

TEST(Registration, WithoutTheInterfaceVersionToldBefore) {
    GoodClass good("GoodZKT");
    Host host;
    service<void(PluginClassRecord *)>("PluginRegisterClass")(&good.record);
    EXPECT_THAT(host.violations(),
                ElementsAre("PluginRegisterClass: GoodZKT: interface version 13, but the plug-in "
                            "told the host 0"));
}

/// One thing wrong in an otherwise good record, and what the host says about it.
struct Fault {
    const char *name;
    std::function<void(GoodClass &)> spoil;
    const char *message;
};

class BadRecord : public testing::TestWithParam<Fault> {};

TEST_P(BadRecord, IsRefusedWithThePlace) {
    GoodClass bad("GoodZKT");
    GetParam().spoil(bad);
    Host host;
    const std::uint64_t offsetBefore = bad.record.dataOffset;
    bad.registerRecord();
    EXPECT_THAT(host.violations(),
                ElementsAre(std::string("PluginRegisterClass: ") + GetParam().message));
    EXPECT_THAT(host.registeredRecords(), IsEmpty());
    EXPECT_EQ(bad.record.dataOffset, offsetBefore);
}

const Fault faults[] = {
    {"NoName", [](GoodClass &c) { c.record.name = nullptr; }, "a class without a name: no name"},
    {"EmptyName", [](GoodClass &c) { c.record.name = ""; }, "a class without a name: no name"},
    {"Version", [](GoodClass &c) { c.record.version = 12; },
     "GoodZKT: interface version 12, but the plug-in told the host 13"},
    {"Padding", [](GoodClass &c) { c.record.padding = 1; },
     "GoodZKT: the padding behind the version is not zero"},
    {"Superclass", [](GoodClass &c) { c.record.superclass = "NoSuchClass"; },
     "GoodZKT: unknown superclass NoSuchClass"},
    {"SuperclassWithData", [](GoodClass &c) { c.record.superclass = "NSExceptionZKT"; },
     "GoodZKT: superclass NSExceptionZKT has instance data"},
    {"Flags", [](GoodClass &c) { c.record.flags = 5; }, "GoodZKT: the flags 5 are not supported"},
    {"DataSize", [](GoodClass &c) { c.record.dataSize = 40; },
     "GoodZKT: the data size 40 is no multiple of 16"},
    {"DataOffset", [](GoodClass &c) { c.record.dataOffset = 48; },
     "GoodZKT: the data offset is the host's to write, but is 48"},
    {"PropertiesWithoutTable", [](GoodClass &c) { c.record.properties = nullptr; },
     "GoodZKT: 3 properties without a table"},
    {"PropertiesWithoutCount", [](GoodClass &c) { c.record.propertyCount = 0; },
     "GoodZKT: a table of properties with the count 0"},
    {"MethodsWithoutTable", [](GoodClass &c) { c.record.methods = nullptr; },
     "GoodZKT: 4 methods without a table"},
    {"MethodsWithoutCount", [](GoodClass &c) { c.record.methodCount = 0; },
     "GoodZKT: a table of methods with the count 0"},
    {"ConstantsWithoutTable", [](GoodClass &c) { c.record.constants = nullptr; },
     "GoodZKT: 2 constants without a table"},
    {"SharedMethodsWithoutTable", [](GoodClass &c) { c.record.sharedMethods = nullptr; },
     "GoodZKT: 1 shared methods without a table"},
    {"Events", [](GoodClass &c) { c.record.eventCount = 1; }, "GoodZKT: events are not supported"},
    {"EventInstances", [](GoodClass &c) { c.record.eventInstances = &c; },
     "GoodZKT: event instances are not supported"},
    {"Interfaces", [](GoodClass &c) { c.record.interfaces = &c; },
     "GoodZKT: interfaces are not supported"},
    {"Bindings", [](GoodClass &c) { c.record.bindingCount = 1; },
     "GoodZKT: bindings are not supported"},
    {"SharedProperties", [](GoodClass &c) { c.record.sharedProperties = &c; },
     "GoodZKT: shared properties are not supported"},
    {"Delegates", [](GoodClass &c) { c.record.delegateCount = 1; },
     "GoodZKT: delegates are not supported"},
    {"Enumerations", [](GoodClass &c) { c.record.enumerationCount = 1; },
     "GoodZKT: enumerations are not supported"},
    {"PropertyName", [](GoodClass &c) { c.properties[0].name = nullptr; },
     "GoodZKT: property 1: no name"},
    {"PropertyType", [](GoodClass &c) { c.properties[0].type = nullptr; },
     "GoodZKT: property 1 (size): no type"},
    {"PropertyTypeSyntax", [](GoodClass &c) { c.properties[0].type = "Integer Integer"; },
     "GoodZKT: property 1 (size): type \"Integer Integer\": column 9: expected the end"},
    {"PropertyTypeUnknown", [](GoodClass &c) { c.properties[0].type = "Integre"; },
     "GoodZKT: property 1 (size): unknown type Integre"},
    {"PropertyGroup", [](GoodClass &c) { c.properties[0].group = 1; },
     "GoodZKT: property 1 (size): groups are not supported"},
    {"PropertyFlags", [](GoodClass &c) { c.properties[0].flags = 4; },
     "GoodZKT: property 1 (size): the flags 4 are not supported"},
    {"PropertyReserved", [](GoodClass &c) { c.properties[0].reserved[4] = 1; },
     "GoodZKT: property 1 (size): a reserved slot is not zero"},
    {"PropertyGetter", [](GoodClass &c) { c.properties[0].getter = nullptr; },
     "GoodZKT: property 1 (size): no getter"},
    {"FieldGetterOnly", [](GoodClass &c) { c.properties[1].setter = nullptr; },
     "GoodZKT: property 2 (Handle): only one accessor is marked as a field"},
    {"FieldSetterOnly", [](GoodClass &c) { c.properties[1].getter = pointer(getter); },
     "GoodZKT: property 2 (Handle): only one accessor is marked as a field"},
    {"FieldPastTheData", [](GoodClass &c) { c.properties[1].parameter = 25; },
     "GoodZKT: property 2 (Handle): its field at 25 passes the 32 bytes of instance data"},
    {"ByteFieldPastTheData", [](GoodClass &c) { c.properties[2].parameter = 32; },
     "GoodZKT: property 3 (Last): its field at 32 passes the 32 bytes of instance data"},
    {"FieldBeforeTheData", [](GoodClass &c) { c.properties[1].parameter = -8; },
     "GoodZKT: property 2 (Handle): its field at -8 passes the 32 bytes of instance data"},
    {"PropertyTwice", [](GoodClass &c) { c.properties[0].name = "HANDLE"; },
     "GoodZKT: property 2 (Handle): declared twice"},
    {"MethodFunction", [](GoodClass &c) { c.methods[0].function = nullptr; },
     "GoodZKT: method 1 (Constructor): no function"},
    {"MethodSecondFunction", [](GoodClass &c) { c.methods[0].secondFunction = pointer(function); },
     "GoodZKT: method 1 (Constructor): second functions are not supported"},
    {"MethodFlags", [](GoodClass &c) { c.methods[0].flags = 0x80; },
     "GoodZKT: method 1 (Constructor): the flags 128 are not supported"},
    {"SharedMethodFlags", [](GoodClass &c) { c.sharedMethods[0].flags = 0x104; },
     "GoodZKT: shared method 1 (shared as GoodZKT): the flags 260 are not supported"},
    {"MethodReserved", [](GoodClass &c) { c.methods[0].reserved[0] = 1; },
     "GoodZKT: method 1 (Constructor): a reserved slot is not zero"},
    {"MethodDeclaration", [](GoodClass &c) { c.methods[0].declaration = nullptr; },
     "GoodZKT: method 1: no declaration"},
    {"MethodSyntax", [](GoodClass &c) { c.methods[0].declaration = "f("; },
     "GoodZKT: method 1 (f(): \"f(\": column 3: expected a parameter"},
    {"MethodWithoutName",
     [](GoodClass &c) { c.methods[0].declaration = "a as Integer, b as Integer"; },
     "GoodZKT: method 1 (a as Integer, b as Integer): no name in the declaration"},
    {"MethodParameterType", [](GoodClass &c) { c.methods[0].declaration = "f(a as Strin)"; },
     "GoodZKT: method 1 (f(a as Strin)): unknown type Strin"},
    {"MethodResultType", [](GoodClass &c) { c.methods[0].declaration = "f as Boolea"; },
     "GoodZKT: method 1 (f as Boolea): unknown type Boolea"},
    {"MethodTwice", [](GoodClass &c) { c.methods[0].declaration = "OVERLOADED(b as integer)"; },
     "GoodZKT: method 2 (overloaded(a as Integer)): declared twice"},
    {"SharedMethodFunction", [](GoodClass &c) { c.sharedMethods[0].function = nullptr; },
     "GoodZKT: shared method 1 (shared as GoodZKT): no function"},
    {"ConstantDeclaration", [](GoodClass &c) { c.constants[1].declaration = nullptr; },
     "GoodZKT: constant 2: no declaration"},
    {"ConstantSyntax", [](GoodClass &c) { c.constants[1].declaration = "Two : 2"; },
     "GoodZKT: constant 2 (Two : 2): \"Two : 2\": column 5: expected \"=\""},
    {"ConstantReserved", [](GoodClass &c) { c.constants[1].reserved[0] = 1; },
     "GoodZKT: constant 2 (Two = &h2): a reserved slot is not zero"},
    {"ConstantTwice", [](GoodClass &c) { c.constants[1].declaration = "one = 5"; },
     "GoodZKT: constant 2 (one = 5): declared twice"},
};

INSTANTIATE_TEST_SUITE_P(EachFault, BadRecord, testing::ValuesIn(faults),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(BadRecords, EveryFaultIsReported) {
    GoodClass bad("GoodZKT");
    bad.record.dataSize = 33;
    bad.methods[0].function = nullptr;
    bad.constants[0].declaration = nullptr;
    Host host;
    bad.registerRecord();
    EXPECT_THAT(host.violations(), testing::SizeIs(3));
}

} // namespace
