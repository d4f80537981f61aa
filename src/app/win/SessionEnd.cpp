#include "app/win/SessionEnd.h"

#include <initializer_list>

#include "app/win/WindowPlace.h"

namespace quillon {

void SessionEnd::Close(HWND window) const {
    for (const auto& step : std::initializer_list<std::function<void()>>{
             [&] { rooms.KeepSettings(); }, [&] { KeepWindowPlace(window, density, placement.place); },
             [&] { rooms.CloseCurrentFile(); }, [&] { shutdown ? shutdown() : void(); }}) {
        try {
            step();
        } catch (const std::exception& error) {
            rooms.Failed(error);
        }
    }
}

void SessionEnd::Abandon(HWND window) const {
    if (!rooms.longCommand.IsBusy()) {
        rooms.playback.Stop();
        return Close(window);
    }
    rooms.KeepSettings();
    KeepWindowPlace(window, density, placement.place);
    if (shutdown) shutdown();
}

}  // namespace quillon
