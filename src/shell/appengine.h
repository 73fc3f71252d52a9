#pragma once

class QQmlEngine;

// Prepares an engine for the application's views: the network guard and the icon images.
// The application and the view tests use the same set-up.
void configureEngine(QQmlEngine *engine);
