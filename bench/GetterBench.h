#pragma once

#include "RatioReporter.h"

#include "host/Host.h"

#include <vector>

/// Registers benchmarks of getters of the image that the host has loaded, and of the same work
/// without the plug-in. The host has to outlive the run.
///
/// A scalar getter is measured against a function that only takes the object from the instance's
/// field and sends the message, called through a pointer as the host calls a getter. It sends as
/// the image does: by objc_msg_lookup for the Linux object, through objc_msgSend for the bundle. No
/// limit is set for the bundle: on Linux its way to the loader's function and back is longer than
/// on a Mac, and not the plug-in's.
std::vector<Ratio> registerGetters(host::Host &host, host::ImageFormat format);

/// One message sent by compiled code, by libffi and by NSInvocation.
std::vector<Ratio> registerOtherWaysToSend();
