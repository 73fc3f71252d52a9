#pragma once

class QSettings;

// The preferences the application's shared objects use: one QSettings for the user's
// "Varnholt" preferences, made on first use. Tests construct their own instead.
[[nodiscard]] QSettings *applicationSettings();
