#include "shell/tutorial/TutorialNotes.h"

#include "calculation/NumberLocale.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace scrivlet {

namespace {

// Front note first. "[←]" marks the way to the next note of the chain and is plain text.
const QStringList &pointTexts()
{
    static const QStringList texts = {
        // 1
        QStringLiteral("Welcome to Scrivlet!\n\n"
                       "The best way to use Scrivlet is to never title a note, delete a note, organize a note, or worry about a note.\n\n"
                       "Embrace impermanence (and bad spelling).\n\n"
                       "[←] Swipe or ⌘+[ to see the previous note."),
        // 2
        QStringLiteral("math\n\n"
                       "Activate features by typing a keyword in the first line.\n\n"
                       "In this case, “math” at the top will make it so any line that ends in an equal sign will be calculated.\n\n"
                       "240 + (23 / 8) * 6 =\n\n"
                       "$4.25 for lychee + $21 for moon cakes =\n\n"
                       "But wait, there's more.\n\n"
                       "[←] Swipe."),
        // 3
        QStringLiteral("math\n\n"
                       "The math keyword also enables conversions.\n\n"
                       "89 miles to km =\n"
                       "4\" 2' to cm =\n"
                       "32 oz to lbs =\n\n"
                       "$32 USD to JPY =\n\n"
                       "By default, USD is primary and CAD is secondary. You can quickly convert from primary to secondary like this:\n\n"
                       "$23 =\n"
                       "(note the dollar sign)\n\n"
                       "or from any currency into your primary like this:\n\n"
                       "$5 BTC =\n"
                       "(note the dollar sign)\n\n"
                       "Change your primary and secondary currency in settings.\n\n"
                       "[←] My favorite feature is coming up."),
        // 4
        QStringLiteral("math\n\n"
                       "Scrivlet also supports variables. You can define a variable by using a colon followed by a number.\n\n"
                       "guests: 5\n"
                       "cost per guest: $34\n\n"
                       "and then you can use these variables in calculations\n\n"
                       "guests * cost per guest =\n\n"
                       "If you change the value of a variable, all the calculated values will change too (try it!).\n\n"
                       "Variables can be calculations too. For example:\n\n"
                       "hourly rate: 23.75\n\n"
                       "daily earnings: hourly rate * 8 =\n\n"
                       "monthly salary: daily earnings * 20 =\n\n"
                       "Try changing the value of “hourly rate” and you’ll see all the relevant values change.\n\n"
                       "[←] Time for some mental rest."),
        // 5
        QStringLiteral("Breathe in.\n\n"
                       "Breathe outtttttt.\n\n"
                       "Nice.\n\n\n\n"
                       "[←]"),
        // 6
        QStringLiteral("list: Optional title\n"
                       "Every line is automatically a new item.\n\n"
                       "# Break up lists with headers\n"
                       "Doesn’t it feel good\n"
                       "to check things off\n"
                       "just type “/x” at the end of an item\n"
                       "to check it off /x\n"
                       "like that ^\n\n"
                       "[←] great job!"),
        // 7
        QStringLiteral("count\n"
                       "Ted Bluderfield\n"
                       "Sadie Lafleur\n"
                       "Carl Sagos\n"
                       "Andrea Xi\n"
                       "[←] Connie Tinue"),
        // 8
        QStringLiteral("sum\n\n"
                       "This will add all of the numbers in the text.\n\n"
                       "$2 for apples, $25 for bus tickets, $6 for coffee and $4.25 for a bagel.\n\n"
                       "[←] Next"),
        // 9
        QStringLiteral("avg\n\n"
                       "Same, but average.\n\n"
                       "$2 for apples, $25 for bus tickets, $6 for coffee and $4.25 for a bagel.\n\n"
                       "[←] Almost at the end!"),
        // 10
        QStringLiteral("Try this. Type “timer 5” on the next empty line and press enter.\n\n\n"
                       "^^^ Type it right here!\n\n"
                       "“timer” is a stopwatch\n"
                       "“timer 5“ is a countdown\n"
                       "“timer 3:30” is a countdown\n"
                       "“timer pomo” is a classic pomo\n"
                       "“timer 57 11” is a custom pomo\n\n"
                       "“timer p” will pause/resume\n"
                       "“timer r” will restart\n"
                       "“timer s” will stop\n\n"
                       "You can try and stop it now.\n\n"
                       "[←] 2 more!"),
        // 11
        QStringLiteral("What if I forget?!\n\n"
                       "Just type “/“ on any empty line. <3\n\n\n"
                       "^^^ Try it here\n"
                       "[←] 1 more!"),
        // 12
        QStringLiteral("\n\n"
                       "Last trick - I promise!\n\n"
                       "Take a screenshot of some text, and drag or paste it in here.\n\n\n"
                       "[←]"),
        // 13
        QStringLiteral("Finally!\n\n"
                       "⌘ + F : Search notes\n\n"
                       "⌘ + P : Pin Scrivlet to top\n\n"
                       "⌘ + D : Delete note\n\n"
                       "⌘ + 1 : Go to latest note\n\n"
                       "⌘⇧ + 1 : Promote note to front\n\n"
                       "Or mouse over the top part of Scrivlet to click cool sci-fi buttons.\n\n"
                       "Go to Settings [⌘ + ,] to find themes, custom keywords, privacy settings and more.\n\n"
                       "The full user manual can be found at the product web site.\n\n"
                       "For now, start your first note with [⌘ + N].\n\n"
                       "To infinity, and beyond!"),
        // 14
        QStringLiteral("The tutorial is over. You can start using the app now."),
        // 15
        QStringLiteral("No seriously, there’s nothing to see here."),
        // 16
        QStringLiteral("Have you ever played The Stanley Parable? I think you’d like that game."),
        // 17
        QStringLiteral("Wow, even ads won’t turn you away eh? Okay, well since we’re here, I guess I can introduce myself.\n\n"
                       "I’m Marlow. I made Scrivlet. I’ve got a toddler who loves to scream “THANK YOU BYE BYE” at birds. I love creating things that surprise and delight people - and if it’s useful and beautiful too, all the better.\n\n"
                       "I use logic mostly to justify my feelings, and I’m working on accepting that my work is not my worth.\n\n"
                       "I’m currently re-reading A Psalm for the Wild-Built"),
    };
    return texts;
}

// Where a decimal-comma reader gets other words: amounts written with a comma, a line
// in lower case, and no pointer to the manual. Numbered from the front note, 1.
const std::vector<std::pair<int, QString>> &commaOverrides()
{
    static const std::vector<std::pair<int, QString>> overrides = {
        {2, QStringLiteral("math\n\n"
                           "Activate features by typing a keyword in the first line.\n\n"
                           "In this case, “math” at the top will make it so any line that ends in an equal sign will be calculated.\n\n"
                           "240 + (23 / 8) * 6 =\n\n"
                           "$4,25 for lychee + $21 for moon cakes =\n\n"
                           "But wait, there's more.\n\n"
                           "[←] Swipe.")},
        {4, QStringLiteral("math\n\n"
                           "Scrivlet also supports variables. You can define a variable by using a colon followed by a number.\n\n"
                           "guests: 5\n"
                           "cost per guest: $34\n\n"
                           "and then you can use these variables in calculations\n\n"
                           "guests * cost per guest =\n\n"
                           "If you change the value of a variable, all the calculated values will change too (try it!).\n\n"
                           "Variables can be calculations too. For example:\n\n"
                           "hourly rate: 23,75\n\n"
                           "daily earnings: hourly rate * 8 =\n\n"
                           "monthly salary: daily earnings * 20 =\n\n"
                           "Try changing the value of “hourly rate” and you’ll see all the relevant values change.\n\n"
                           "[←] Time for some mental rest.")},
        {8, QStringLiteral("sum\n\n"
                           "This will add all of the numbers in the text.\n\n"
                           "$2 for apples, $25 for bus tickets, $6 for coffee and $4,25 for a bagel.\n\n"
                           "[←] Next")},
        {9, QStringLiteral("avg\n\n"
                           "Same, but average.\n\n"
                           "$2 for apples, $25 for bus tickets, $6 for coffee and $4,25 for a bagel.\n\n"
                           "[←] Almost at the end!")},
        {10, QStringLiteral("Try this. Type “timer 5” on the next empty line and press enter.\n\n\n"
                           "^^^ type it right here!\n\n"
                           "“timer” is a stopwatch\n"
                           "“timer 5“ is a countdown\n"
                           "“timer 3:30” is a countdown\n"
                           "“timer pomo” is a classic pomo\n"
                           "“timer 57 11” is a custom pomo\n\n"
                           "“timer p” will pause/resume\n"
                           "“timer r” will restart\n"
                           "“timer s” will stop\n\n"
                           "You can try and stop it now.\n\n"
                           "[←] 2 more!")},
        {13, QStringLiteral("Finally!\n\n"
                           "⌘ + F : Search notes\n\n"
                           "⌘ + P : Pin Scrivlet to top\n\n"
                           "⌘ + D : Delete note\n\n"
                           "⌘ + 1 : Go to latest note\n\n"
                           "⌘⇧ + 1 : Promote note to front\n\n"
                           "Or mouse over the top part of Scrivlet to click cool sci-fi buttons.\n\n"
                           "Go to Settings [⌘ + ,] to find themes, custom keywords, privacy settings and more.\n\n"
                           "For now, start your first note with [⌘ + N].\n\n"
                           "To infinity, and beyond!")},
    };
    return overrides;
}

} // namespace

TutorialNotes::Variant TutorialNotes::variantFor(const NumberLocale &locale)
{
    return locale.usesDecimalComma() ? Variant::comma : Variant::point;
}

QStringList TutorialNotes::texts(Variant variant)
{
    QStringList texts = pointTexts();
    if (variant == Variant::comma) {
        for (const auto &[number, text] : commaOverrides())
            texts[number - 1] = text;
    }
    return texts;
}

QStringList TutorialNotes::seedingOrder(const NumberLocale &locale)
{
    QStringList texts = TutorialNotes::texts(variantFor(locale));
    std::reverse(texts.begin(), texts.end());
    return texts;
}

} // namespace scrivlet
