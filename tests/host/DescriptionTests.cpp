#include "host/classes/Description.h"

#include "tests/host/FakePlugin.h"

namespace {

using namespace host;

std::int64_t getter(ObjectHandle, std::int64_t) {
    return 0;
}
void function(ObjectHandle) {}

struct Descriptions : testing::Test {
    Descriptions() {
        first.properties = {field("Handle", "Integer", 0),
                            property("size", "UInt64", pointer(getter)),
                            property("name", "String", pointer(getter), pointer(function))};
        first.methods = {method("argument(index as integer) as string", pointer(function))};
        first.sharedMethods = {method("shared as FirstZKT", pointer(function))};
        first.constants = {constantRow("Ten = &hA")};
        first.record.constructor = function;
        first.registerClass();
        second.registerClass();
    }
    FakeClass first{"FirstZKT", 16};
    FakeClass second{"SecondZKT", 0};
    Host host;
};

TEST_F(Descriptions, AsText) {
    EXPECT_EQ(describeClasses(host.classes(), DescriptionFormat::text),
              R"(FirstZKT
  interface version 13, 16 bytes of instance data at 48, flags 4, constructor

  Properties
    Handle  Integer  field at 0
    size    UInt64   read-only
    name    String   read and write

  Methods
    argument(index as integer) as string  4

  Shared methods
    shared as FirstZKT  4

  Constants
    Ten = &hA  10

SecondZKT
  interface version 13, 0 bytes of instance data at 48, flags 4
)");
}

TEST_F(Descriptions, AsMarkdown) {
    EXPECT_EQ(describeClasses(host.classes(), DescriptionFormat::markdown),
              R"(# FirstZKT

interface version 13, 16 bytes of instance data at 48, flags 4, constructor.

## Properties

| Name | Type | Access |
|---|---|---|
| `Handle` | Integer | field at 0 |
| `size` | UInt64 | read-only |
| `name` | String | read and write |

## Methods

| Declaration | Flags |
|---|---|
| `argument(index as integer) as string` | 4 |

## Shared methods

| Declaration | Flags |
|---|---|
| `shared as FirstZKT` | 4 |

## Constants

| Declaration | Value |
|---|---|
| `Ten = &hA` | 10 |

# SecondZKT

interface version 13, 0 bytes of instance data at 48, flags 4.
)");
}

TEST_F(Descriptions, AsJson) {
    EXPECT_EQ(describeClasses(host.classes(), DescriptionFormat::json),
              R"([
  {
    "name": "FirstZKT",
    "superclass": null,
    "interfaceVersion": 13,
    "dataSize": 16,
    "dataOffset": 48,
    "flags": 4,
    "constructor": true,
    "destructor": false,
    "properties": [
      {
        "name": "Handle",
        "type": "Integer",
        "writable": true,
        "fieldOffset": 0,
        "flags": 6
      },
      {
        "name": "size",
        "type": "UInt64",
        "writable": false,
        "fieldOffset": null,
        "flags": 6
      },
      {
        "name": "name",
        "type": "String",
        "writable": true,
        "fieldOffset": null,
        "flags": 6
      }
    ],
    "methods": [
      {
        "declaration": "argument(index as integer) as string",
        "name": "argument",
        "parameters": [
          {
            "name": "index",
            "type": "Integer"
          }
        ],
        "result": "String",
        "flags": 4
      }
    ],
    "sharedMethods": [
      {
        "declaration": "shared as FirstZKT",
        "name": "shared",
        "parameters": [],
        "result": "FirstZKT",
        "flags": 4
      }
    ],
    "constants": [
      {
        "declaration": "Ten = &hA",
        "name": "Ten",
        "value": 10
      }
    ]
  },
  {
    "name": "SecondZKT",
    "superclass": null,
    "interfaceVersion": 13,
    "dataSize": 0,
    "dataOffset": 48,
    "flags": 4,
    "constructor": false,
    "destructor": false,
    "properties": [],
    "methods": [],
    "sharedMethods": [],
    "constants": []
  }
]
)");
}

TEST(EmptyDescription, SaysSo) {
    const Host host;
    EXPECT_EQ(describeClasses(host.classes(), DescriptionFormat::text), "no classes\n");
    EXPECT_EQ(describeClasses(host.classes(), DescriptionFormat::markdown), "No classes.\n");
    EXPECT_EQ(describeClasses(host.classes(), DescriptionFormat::json), "[]\n");
}

TEST(AccountLine, CountsInWords) {
    EXPECT_EQ(describe(Account{}),
              "0 calls, 0 objects and 0 strings live, no leaks, no violations");
    EXPECT_EQ(describe(Account{
                  .calls = 1, .liveObjects = 1, .liveStrings = 1, .leaks = 1, .violations = 1}),
              "1 call, 1 object and 1 string live, 1 leak, 1 violation");
    EXPECT_EQ(describe(Account{
                  .calls = 2, .liveObjects = 3, .liveStrings = 4, .leaks = 5, .violations = 6}),
              "2 calls, 3 objects and 4 strings live, 5 leaks, 6 violations");
}

} // namespace
