#include "computation/backup/backup.h"

#include "layout/agreed.h"

TEST(Layout, Backup)
{
    expectAgreed<double(DataBase *, DBLinkState **, Long, Long, CPDijkNode *, DBLabelSwitchedPath *,
                        BackupType)>(computeCost);
    expectAgreed<int(DataBase *, LSPRequestList *, Long, BackupType)>(computeBackup);
    expectAgreed<const BackupType>(&NO_BACKUP, &LOCAL_BACKUP, &GLOBAL_BACKUP);
}
