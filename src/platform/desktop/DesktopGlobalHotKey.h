#pragma once

#include "platform/GlobalHotKey.h"

#include <memory>

namespace scrivlet {

// The global hot key service this desktop offers: key grabs on X11, the desktop
// portal on Wayland. Where neither works every registration is refused with "the
// desktop offers no global shortcuts", so the app runs on and can say why. Call it
// after the QGuiApplication exists.
std::unique_ptr<GlobalHotKey> createDesktopGlobalHotKey();

} // namespace scrivlet
