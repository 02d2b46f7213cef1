// A child process for the crash tests: it saves notes into a store as fast as it can
// and reports each save once it has returned, until it is killed.
//
//   notes_store_writer <data folder>
//
// Prints "<note id> <save number>" per save, flushed at once. Save number n always
// writes `StoreWriterText::contentFor(n)` into the note, so the test can tell a save
// that landed whole from one that didn't.

#include "StoreWriterText.h"

#include "notes/CoreDataManager.h"
#include "notes/CoreDataStack.h"
#include "platform/ManualClock.h"
#include "platform/MemorySettingsStore.h"

#include <QCoreApplication>

#include <cstdio>
#include <vector>

using namespace scrivlet;

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: notes_store_writer <data folder>\n");
        return 2;
    }
    auto opened = CoreDataStack::open(QString::fromLocal8Bit(argv[1]));
    if (!opened.ok()) {
        std::fprintf(stderr, "%s\n", qPrintable(opened.error().message));
        return 1;
    }
    ManualClock clock;
    MemorySettingsStore settings;
    CoreDataManager manager(*opened.value(), settings, clock);

    // A pool of notes rewritten in turn, new notes joining now and then: both the
    // insert and the update path are cut off at random points.
    std::vector<Note> notes;
    for (long save = 1;; ++save) {
        clock.advance(std::chrono::seconds(1));
        if (notes.size() < 5 || save % 7 == 0)
            notes.push_back(manager.createNote());
        Note &note = notes[std::size_t(save) % notes.size()];
        note.content = test::StoreWriterText::contentFor(save);
        manager.saveNote(note);
        std::printf("%s %ld\n", qPrintable(note.id.toString(QUuid::WithoutBraces)), save);
        std::fflush(stdout);
    }
}
