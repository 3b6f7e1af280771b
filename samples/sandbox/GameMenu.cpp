#include "samples/sandbox/GameMenu.h"

#include "Cross/Util/CheatMenu.h"
#include "Cross/engine/scriptconfig/GlobalLua.h"

GameMenu::GameMenu(char const * file) {
    CheatMenu::Initialize();
    CheatMenu::RegisterLua(*GlobalLua::GetState());
    Load(file);
}

GameMenu::~GameMenu() {
    FilePath::DetachFileChangeNotification(this, nullptr);
    CheatMenu::Shutdown();
}

void GameMenu::Load(char const * file) {
    FilePath::DetachFileChangeNotification(this, nullptr);
    CheatMenu::Instance()->LoadCheatMenu(file, true);
    FilePath::AttachFileChangeNotification(file, this);
}

void GameMenu::OnFileChanged(char const *) { CheatMenu::Instance()->Reload(); }
