// Spies watch by variables of their own: a second one beside the first would take its place.

#include "AllocationSpy.h"
#include "ClassLookupSpy.h"
#include "CoreFoundationCalls.h"
#include "CoreFoundationSpy.h"
#include "FileSpy.h"
#include "LoadedPlugin.h"
#include "StringCreationSpy.h"
#include "TypeIdentifierSpy.h"

#include <gtest/gtest.h>

namespace {

template <class Spy, class... Arguments>
void expectAlone(const Arguments &...arguments) {
    {
        const Spy gone(arguments...);
    }
    const Spy first(arguments...);
    EXPECT_THROW(Spy(arguments...), std::logic_error);
}

} // namespace

TEST(Spies, AreAlone) {
    LoadedPlugin loaded;
    expectAlone<AllocationSpy>(loaded.image);
    expectAlone<ClassLookupSpy>(loaded.image);
    expectAlone<CoreFoundationSpy>(loaded.image);
    expectAlone<FileSpy>(loaded.image);
    expectAlone<StringCreationSpy>(loaded.image);
    expectAlone<TypeIdentifierSpy>();
    expectAlone<CoreFoundationCalls>(loaded.image, [](std::string_view) { return true; });
}

TEST(Spies, OfFilesAreOfCoreFoundationToo) {
    LoadedPlugin loaded;
    const FileSpy first(loaded.image);
    EXPECT_THROW(CoreFoundationSpy(loaded.image), std::logic_error);
}
