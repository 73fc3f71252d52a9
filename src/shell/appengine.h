#pragma once

class QQmlEngine;

// Prepares an engine for the application's views: the network guard, the icon images, and the
// building of asynchronously loaded views in short slices.
// The application and the view tests use the same set-up.
void configureEngine(QQmlEngine *engine);
