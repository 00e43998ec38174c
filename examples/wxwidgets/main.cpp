// Plays an audio file with a picture of the sound:  corvina-wx FILE
//
// Both controls sit in wxWidgets' ActiveX container. Their events arrive as wxWidgets' own; the
// graph follows the player by itself. The program ends with the file, or when its window is closed.
// tools/try-wxwidgets builds and runs it.

#include <wx/wx.h>

#include <wx/msw/ole/activex.h>

#include <Corvina.h>

#include <cstdio>

namespace {

constexpr int failed = 1;

// The identifiers of the events that the program handles, as the type library has them.
constexpr DISPID donePlay = 1;     // of the player
constexpr DISPID ended = 3;        // of the player
constexpr DISPID levelChanged = 1; // of the graph

// A new control in a container of its own, which holds it as long as the window lives.
template <typename Interface>
class Hosted {
public:
    bool create(wxWindow* parent, REFCLSID clsid) {
        if (FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, __uuidof(Interface),
                                    reinterpret_cast<void**>(&control_))))
            return false;
        window_ = new wxWindow(parent, wxID_ANY);
        container_ = new wxActiveXContainer(window_, __uuidof(Interface), control_);
        return true;
    }
    ~Hosted() {
        if (control_)
            control_->Release();
    }
    Interface* operator->() const { return control_; }
    Interface* get() const { return control_; }
    wxWindow* window() const { return window_; }
    wxActiveXContainer* container() const { return container_; }

private:
    Interface* control_ = nullptr;
    wxWindow* window_ = nullptr;
    wxActiveXContainer* container_ = nullptr;
};

class PlayerFrame : public wxFrame {
public:
    PlayerFrame() : wxFrame(nullptr, wxID_ANY, "Corvina", wxDefaultPosition, wxSize(460, 260)) {}

    bool createControls() {
        if (!player_.create(this, CLSID_cPlayer) || !graph_.create(this, CLSID_cAudioGraph))
            return false;
        player_.container()->Bind(wxEVT_ACTIVEX, &PlayerFrame::onPlayer, this);
        graph_.container()->Bind(wxEVT_ACTIVEX, &PlayerFrame::onGraph, this);
        auto* const column = new wxBoxSizer(wxVERTICAL);
        column->Add(graph_.window(), 1, wxEXPAND | wxALL, 8);
        column->Add(player_.window(), 0, wxALL, 0);
        SetSizer(column);
        Layout();
        return SUCCEEDED(graph_->put_Bands(100)) && SUCCEEDED(graph_->putref_Player(player_.get()));
    }

    // The result of PlayStart.
    long play(const wxString& file) {
        constexpr long waveMapper = -1;
        constexpr long bufferSize = 0; // without effect
        long result = failed;
        player_->Init(&result);
        const BSTR name = SysAllocString(file.wc_str());
        if (FAILED(player_->PlayStart(name, waveMapper, bufferSize, &result)))
            result = failed;
        SysFreeString(name);
        return result;
    }

private:
    void onPlayer(wxActiveXEvent& event) {
        if (event.GetDispatchId() == ended)
            std::printf("ended, reason %ld; %d levels above 0\n", event[0].GetLong(), levels_);
        if (event.GetDispatchId() == donePlay) {
            std::puts("done");
            // Not within the control's own call: closing destroys it.
            CallAfter([this] { Close(); });
        }
    }
    void onGraph(wxActiveXEvent& event) {
        if (event.GetDispatchId() == levelChanged && event[0].GetLong() > 0)
            ++levels_;
    }

    Hosted<_cPlayer> player_;
    Hosted<_cAudioGraph> graph_;
    int levels_ = 0;
};

class Program : public wxApp {
public:
    bool OnInit() override {
        if (argc != 2) {
            std::puts("usage: corvina-wx FILE");
            return false;
        }
        auto* const frame = new PlayerFrame;
        if (!frame->createControls()) {
            std::puts("Corvina.ocx is not registered: run regsvr32 Corvina.ocx.");
            frame->Destroy();
            return false;
        }
        frame->Show();
        if (const long result = frame->play(argv[1]); result != 0) {
            std::printf("could not be played, result %ld\n", result);
            frame->Close();
        }
        return true;
    }
};

} // namespace

wxIMPLEMENT_APP(Program);
