#pragma once

#include "keywords/EditorContext.h"
#include "keywords/KeywordDefinitionsContainer.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"
#include "platform/NotificationBus.h"
#include "shell/preferences/KeywordPreferences.h"
#include "shell/preferences/MiscPreferences.h"
#include "shell/preferences/VisualPreferences.h"

#include <QVariantMap>

#include <vector>

namespace scrivlet::testing {

// The shared objects of an editor, in memory, with every hint the editors post.
struct KeywordTestEnvironment {
    MemorySettingsStore store;
    NotificationBus bus;
    KeywordPreferences keywordPreferences{store, &bus};
    VisualPreferences visualPreferences{store};
    MiscPreferences miscPreferences{store};
    ManualClock clock;
    KeywordDefinitionsContainer keywords{keywordPreferences};
    EditorContext context{keywords, visualPreferences, miscPreferences, bus, clock};

    std::vector<QVariantMap> hints;
    NotificationBus::Subscription hintSubscription =
        bus.subscribe(QStringLiteral("updateHintText"), [this](const QVariantMap &payload) { hints.push_back(payload); });
};

} // namespace scrivlet::testing
