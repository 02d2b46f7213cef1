#pragma once

#include <QList>
#include <QUuid>

namespace scrivlet {

// Where a successful save hands the notes it wrote, for the sync engine to send. The
// store calls it only while syncing with iCloud is on; with no sink set nothing is
// queued, which is also what a store without sync must do.
class PendingChangeSink {
public:
    virtual ~PendingChangeSink() = default;
    // Notes inserted or changed by the save, in the order they were first touched.
    virtual void addPendingSaves(const QList<QUuid> &noteIds) = 0;
    // Notes the save removed for good.
    virtual void addPendingDeletions(const QList<QUuid> &noteIds) = 0;
};

} // namespace scrivlet
