#include "samples/sandbox/GameMenu.h"

#include "Cross/Util/CheatMenu.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"

GameMenu::GameMenu(char const * file) {
    CheatMenu::Initialize();
    CheatMenu::RegisterLua(*GlobalLua::GetState());
    CheatMenu::Instance()->LoadCheatMenu(file, true);
    FilePath::AttachFileChangeNotification(file, this);
}

GameMenu::~GameMenu() {
    FilePath::DetachFileChangeNotification(this, nullptr);
    CheatMenu::Shutdown();
}

void GameMenu::OnFileChanged(char const *) { CheatMenu::Instance()->Reload(); }
