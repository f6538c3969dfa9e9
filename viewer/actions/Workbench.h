#pragma once

class QMainWindow;

namespace zelto::view {

class ActionTable;
class AreaModel;
class Document;
class Engine;
class MapPictures;
class MapView;
class MessageBar;
class Preferences;
class TaskRunner;
class TrainingClasses;

/// What the actions work with. Everything outlives them.
struct Workbench {
    QMainWindow& window;
    Document& document;
    Engine& engine;
    AreaModel& areas;
    TrainingClasses& training;
    TaskRunner& tasks;
    MapView& map;
    MapPictures& pictures;
    MessageBar& messages;
    Preferences& preferences;
    ActionTable& actions;
};

} // namespace zelto::view
