#pragma once

#include "Alone.h"

#include "host/image/Image.h"

#include <cstdint>
#include <string_view>

/// Stands between one image and what it calls of the File Manager and of Core Foundation's URLs and
/// names. While it lives, each call of the image's own is a line of the host's trace:
///
///   CFURLGetFSRef(url) = true
///   CFURLCreateCopyDeletingLastPathComponent(nil, url) = parent
///   CFURLCopyLastPathComponent(url) = component
///   CFStringCreateMutableCopy(nil, 0, component) = copy
///   CFStringNormalize(copy, 0)
///   CFStringGetLength
///   CFStringGetCharacters(copy, 0, 5)
///   CFRetain(component), CFRelease(copy)
///   FSGetCatalogInfo("file", 0x10, info, nil, nil, ref) = 0
///   FSRefMakePath("file", zeroed, 4096) = 0
///
/// Objects have the name of what made them; every other one is the url. A file reference is shown
/// as its item's name, "/" for the root folder, and as zeroes or "invalid" where there is no item.
/// One at a time, and not beside another spy of Core Foundation.
class FileSpy {
public:
    explicit FileSpy(const host::Image &image);
    ~FileSpy();
    FileSpy(const FileSpy &) = delete;
    FileSpy &operator=(const FileSpy &) = delete;

    /// The n-th call of the function from now on, counted from 1, fails: it answers false, null or
    /// the error -43, and writes nothing.
    void refuse(std::string_view function, int n = 1);
    /// What the first FSGetCatalogInfo writes as node ID.
    void answerNode(std::uint32_t node);
    /// FSGetCatalogInfo finds every reference valid, even one of zeroes.
    void findEverythingValid();
    /// What CFStringGetLength answers.
    void answerLength(long length);

private:
    Alone<FileSpy> alone_;
};
