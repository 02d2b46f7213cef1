#pragma once

#include "keywords/NoteEditorSession.h"

#include <QMainWindow>

#include <memory>

namespace scrivlet {

class NoteEditorView;
class NoteViewModel;
class SettingsStore;

// The note window: the open note, and the frame the user left it with.
class MainWindow final : public QMainWindow {
    Q_OBJECT
public:
    static constexpr int kDefaultWidth = 350;
    static constexpr int kDefaultHeight = 400;

    MainWindow(const EditorContext &context, SettingsStore &settings, std::shared_ptr<NoteViewModel> note,
               NoteEditorSession::SaveCallback save);
    ~MainWindow() override;

    NoteEditorView &editorView() const { return *m_editor; }
    // Puts another note in the window, or the same note's new holder after the stack
    // reloaded. The note on screen is saved first; the focus stays in the editor.
    void showNote(std::shared_ptr<NoteViewModel> note, NoteEditorSession::SaveCallback save);

    // The frame is kept in four plain numbers; any of them missing means the default size.
    void restoreFrame();
    void saveFrame() const;
    // Saves the open note now, as when the window goes away.
    void flushPendingSave();

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    EditorContext m_context;
    SettingsStore &m_settings;
    NoteEditorView *m_editor;
};

} // namespace scrivlet
