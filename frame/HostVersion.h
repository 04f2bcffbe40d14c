#pragma once

/// The host's version, such as 2013.04; 0.0 when the host does not tell it. Set at start-up.
inline constinit double hostVersion = 0.0;

/// The first versions that can do these things.
inline constexpr double hostCopiesCFStringsSince = 2012.0;
inline constexpr double hostConvertsUTF16Since = 2012.0;
inline constexpr double hostConvertsUTF32Since = 2013.0;
