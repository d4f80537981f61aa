#pragma once

#include "app/win/RoomParts.h"

namespace quillon {

class MainRooms;

/// The commands that ask the user in a dialog, or gather what several rooms show.
class DialogCommands {
  public:
    /// Both outlive it.
    DialogCommands(MainRooms& rooms, const RoomParts& parts) : m_rooms(rooms), m_parts(parts) {}

    void GoToPlace();
    void Statistics();
    void Options();
    void Split();
    /// A picture of the view to the clipboard.
    void CopyImage();

  private:
    MainRooms& m_rooms;
    const RoomParts& m_parts;
};

}  // namespace quillon
