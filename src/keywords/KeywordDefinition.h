#pragma once

#include "keywords/KeywordID.h"

#include <QString>
#include <QStringList>

namespace scrivlet {

// One keyword kind with the words that select it. Colours are theme role names; the
// view that draws the note resolves them.
struct KeywordDefinition {
    KeywordID id = KeywordID::SUM;
    // All words that select the keyword, in the order of the stored list.
    QStringList triggers;
    // The word shown in autocomplete and tutorials.
    QString mainTrigger;
    // Label of the total shown in the note's bar.
    QString label;
    // One line for the keyword autocomplete and the settings.
    QString description;
    // Theme role of the keyword on the first line; empty for a keyword without colour.
    QString colorKeyPath;
    // The trigger may be followed by more text on the line ("timer 5", "paste(, )").
    bool allowArgumentsAfterKeyword = false;
};

} // namespace scrivlet
