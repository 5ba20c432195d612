#pragma once

#include <map>
#include <string>
#include <string_view>

#include "core/rastx/Rastx.h"
#include "settings/Session.h"

namespace tessara {

/// What the history needs of the window around it.
class UndoHost {
  public:
    virtual ~UndoHost() = default;
    virtual void BusyCursor(bool on) = 0;
    /// The toolbar's button 8 is Undo, 9 is Redo.
    virtual void SetImageTool(int index, bool enabled) = 0;
    /// Open viewers take the panes' pictures: 0 import viewer, 1 export viewer, 2 both.
    virtual void PutviewExport(int which) = 0;
};

/// The history of the export pane: whole pictures in files 1.bmp, 2.bmp, ... of the folder Undo, with the
/// counters of Session. Nothing is reported: a snapshot that could not be written is merely not there.
class UndoStore {
  public:
    UndoStore(Session& session, Rastx& exportPane, UndoHost& host)
        : session_(session), exportPane_(exportPane), host_(host) {}

    /// "SAVE", "UNDO" or "REDO", in any case.
    void UndoCommand(std::string_view Command);
    /// Brings buttons and UndoEnabled into line with the counters; "KILL" empties the history before. Makes
    /// the folder while the program starts.
    void UndoRefresh(std::string_view Command);

    std::string SnapshotPath(int number) const;

  private:
    void Save();
    void Load(int number);
    std::string Folder() const { return session_.PrivateFile("Undo"); }

    Session& session_;
    Rastx& exportPane_;
    UndoHost& host_;
    std::map<int, Metadata> metadata_;  ///< of the snapshots: what their files cannot hold
};

}  // namespace tessara
