#pragma once

// The menu of the running game while this object lives; a menu file that is saved in an editor is loaded
// again.

#include "Cross/engine/filesystem/FilePath.h"

class GameMenu : private FilePath::IFileChangeNotify {
public:
    // One at a time. `file` is an aliased or a real path.
    explicit GameMenu(char const * file);
    GameMenu(GameMenu const &) = delete;
    GameMenu & operator=(GameMenu const &) = delete;
    ~GameMenu() override;

    // Another menu file in place of the present one.
    void Load(char const * file);

private:
    void OnFileChanged(char const * path) override;
};
