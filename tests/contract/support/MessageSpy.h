#pragma once

#include "Alone.h"

#include "host/image/Image.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// Stands between one image and the objects that it sends messages to: whoever the receiver, other
/// than nil. One at a time; the messages of all other senders go their way.
class MessageSpy {
public:
    /// What happens instead of the n-th message, counted from 1; has to throw.
    using Interruptions = std::map<std::size_t, std::function<void()>>;

    MessageSpy(const host::Image &image, Interruptions interruptions);
    ~MessageSpy();
    MessageSpy(const MessageSpy &) = delete;
    MessageSpy &operator=(const MessageSpy &) = delete;

    /// The selectors that the last spy saw, interrupted ones too.
    static const std::vector<std::string> &sent();

private:
    Alone<MessageSpy> alone_;
};
