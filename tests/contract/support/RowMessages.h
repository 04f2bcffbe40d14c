#pragma once

/// While on, every object seems to have an isKindOfClass: of its own to whoever asks the runtime:
/// the images then find an object's class row by messages, row by row.
void askEveryRow(bool on);
[[nodiscard]] bool asksEveryRow();
