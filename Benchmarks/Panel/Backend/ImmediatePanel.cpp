#include <Benchmarks/Panel/ImmediatePanel.h>

#include <imgui.h>

#include <string>
#include <vector>

namespace flarebox::benchmarks {

namespace {

constexpr float screenWidth = 1366, screenHeight = 1024;
// The tab at that height: 275 x 420 on a screen of 600.
constexpr float unit = screenHeight / 600, panelWidth = 275 * unit, panelHeight = 420 * unit;
constexpr float menuWidth = 35 * unit, contentWidth = panelWidth - menuWidth, cell = 68 * unit, margin = 12 * unit;
constexpr ImGuiWindowFlags panelFlags =
    ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoSavedSettings;

ImTextureID pictureOf(std::size_t number) {
    return reinterpret_cast<ImTextureID>(number);
}

}  // namespace

struct ImmediatePanel::State {
    ImGuiContext* context = ImGui::CreateContext();
    std::vector<std::string> titles;
    std::string description =
        "A rocker sole that gives back what you put in, under a knit that weighs less than an egg. No. 1";
    int mode = 0;

    ~State() { ImGui::DestroyContext(context); }

    void showMenu() {
        ImGui::SetCursorPos({contentWidth, 0});
        ImGui::Button("x", {menuWidth, 40 * unit});
        constexpr const char* modes[] = {"2D", "3D", "Video"};
        for (int each = 0; each < 3; ++each) {
            ImGui::SetCursorPos({contentWidth, (50 + 48 * static_cast<float>(each)) * unit});
            ImGui::PushStyleColor(ImGuiCol_Button,
                                  each == mode ? IM_COL32(200, 69, 31, 255) : IM_COL32(13, 15, 19, 255));
            if (ImGui::Button(modes[each], {menuWidth, 48 * unit})) mode = each;
            ImGui::PopStyleColor();
        }
    }

    void showAsset() {
        ImGui::SetCursorPos({margin, margin});
        ImGui::TextUnformatted("Flarebox");
        ImGui::SetCursorPos({margin, 45 * unit});
        ImGui::Image(pictureOf(1), {contentWidth - 2 * margin, 158 * unit});
        ImGui::SetCursorPos({margin, 212 * unit});
        ImGui::TextUnformatted(titles.front().c_str());
        ImGui::SetCursorPosX(margin);
        ImGui::PushTextWrapPos(contentWidth - margin);
        ImGui::TextUnformatted(description.data(), description.data() + description.size());
        ImGui::PopTextWrapPos();
        ImGui::SetCursorPos({margin, 284 * unit});
        ImGui::Button("Get coupon", {104 * unit, 34 * unit});
        ImGui::SetCursorPos({margin + 112 * unit, 284 * unit});
        ImGui::Button("Buy", {104 * unit, 34 * unit});
    }

    void showList(float scroll) {
        ImGui::SetCursorPos({margin * 2, 330 * unit});
        ImGui::BeginChild("list", {contentWidth - 4 * margin, cell + 8 * unit}, false,
                          ImGuiWindowFlags_HorizontalScrollbar | ImGuiWindowFlags_NoScrollbar);
        ImGui::SetScrollX(scroll * ImGui::GetScrollMaxX());
        for (std::size_t index = 0; index < titles.size(); ++index) {
            if (index > 0) ImGui::SameLine(0, 6 * unit);
            const ImVec2 from = ImGui::GetCursorScreenPos(), to{from.x + cell, from.y + cell};
            ImGui::PushID(static_cast<int>(index));
            ImGui::InvisibleButton("cell", {cell, cell});
            ImGui::PopID();
            if (!ImGui::IsItemVisible()) continue;
            ImGui::GetWindowDrawList()->AddImageRounded(pictureOf(2 + index % 20), from, to, {0, 0}, {1, 1},
                                                        IM_COL32_WHITE, cell / 2);
        }
        ImGui::EndChild();
    }
};

ImmediatePanel::ImmediatePanel(std::size_t assets) : state_(std::make_unique<State>()) {
    ImGuiIO& io = ImGui::GetIO();
    io.IniFilename = nullptr;
    io.DisplaySize = {screenWidth, screenHeight};
    io.DisplayFramebufferScale = {2, 2};
    io.FontGlobalScale = unit;
    unsigned char* pixels = nullptr;
    int width = 0, height = 0;
    io.Fonts->GetTexDataAsRGBA32(&pixels, &width, &height);
    ImGui::GetStyle().WindowPadding = {0, 0};
    for (std::size_t index = 0; index < assets; ++index)
        state_->titles.push_back("Road running shoe " + std::to_string(index + 1));
    for (int warming = 0; warming < 5; ++warming) frame(1, 0);
}

ImmediatePanel::~ImmediatePanel() = default;

int ImmediatePanel::frame(float slide, float scroll) {
    ImGui::GetIO().DeltaTime = 1.0F / 60;
    ImGui::NewFrame();
    ImGui::SetNextWindowPos({(slide - 1) * panelWidth, (screenHeight - panelHeight) / 2});
    ImGui::SetNextWindowSize({panelWidth, panelHeight});
    ImGui::Begin("panel", nullptr, panelFlags);
    state_->showMenu();
    state_->showAsset();
    state_->showList(scroll);
    ImGui::End();
    ImGui::Render();
    return ImGui::GetDrawData()->TotalVtxCount;
}

}  // namespace flarebox::benchmarks
