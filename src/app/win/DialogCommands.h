#pragma once

#include "app/win/RoomParts.h"

namespace quillon {

class MainRooms;

/// Commands that open a dialog or combine data of several components.
class DialogCommands {
  public:
    /// Both arguments must outlive this object.
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
