#include <Host/Headless/HeadlessHost.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIImage.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>
#include <UIKit/UIWindow.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

// Puts pictures of the tab beside one another, a row for each folder: flarebox-contactsheet OUT.png FOLDER...
// Pictures are named "NUMBER CAPTION.png", those to be shown in their whole width "NUMBER+ CAPTION.png"; the folder's
// name stands before its row.

using namespace flarebox;

namespace {

constexpr CGFloat margin = 24, gap = 14, titleHeight = 34, captionHeight = 24, pictureHeight = 420;
/// Of a wide screen the part beside the panel is left out.
constexpr CGFloat widest = 0.74;
constexpr std::size_t picturesPerLine = 10;

struct Picture {
    std::string caption;
    Ref<UIImage> image;
    CGFloat width() const { return pictureHeight * image->pixelWidth() / image->pixelHeight(); }
};
struct Row {
    std::string title;
    std::vector<Picture> pictures;
};

/// The picture's left part, as far as it is worth showing.
Ref<UIImage> cut(const UIImage& image) {
    const int width = std::min(image.pixelWidth(), static_cast<int>(image.pixelHeight() * widest));
    std::vector<std::uint32_t> pixels;
    for (int y = 0; y < image.pixelHeight(); ++y) {
        const auto row =
            image.pixels().subspan(static_cast<std::size_t>(y) * static_cast<std::size_t>(image.pixelWidth()));
        pixels.insert(pixels.end(), row.begin(), row.begin() + width);
    }
    return UIImage::imageWithPixels(width, image.pixelHeight(), std::move(pixels));
}

/// What follows the number.
std::string captionOf(const std::filesystem::path& file) {
    const std::string name = file.stem().string();
    return name.substr(name.find(' ') + 1);
}

bool isShownWhole(const std::filesystem::path& file) {
    return file.stem().string().find("+ ") != std::string::npos;
}

Row readRow(const std::filesystem::path& folder) {
    Row row{folder.filename().string(), {}};
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() == ".png") files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    for (const auto& file : files) {
        std::ifstream stream(file, std::ios::binary);
        const std::string bytes((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
        const Ref<UIImage> image = UIImage::imageWithData(NSData::dataWithBytes(bytes));
        if (image) row.pictures.push_back({captionOf(file), isShownWhole(file) ? image : cut(*image)});
    }
    return row;
}

void addLabel(UIView& parent, const std::string& text, const CGRect& frame, const UIFont& font, const UIColor& color) {
    const auto label = make<UILabel>();
    label->setText(text);
    label->setFont(font);
    label->setTextColor(color);
    label->setFrame(frame);
    parent.addSubview(*label);
}

/// Lays everything out; answers the size that it takes.
CGSize layOut(UIView& sheet, const std::vector<Row>& rows) {
    CGFloat y = margin, widestLine = 0;
    for (const Row& row : rows) {
        addLabel(sheet, row.title, CGRectMake(margin, y, 600, titleHeight - 8),
                 UIFont::systemFontOfSize(18, UIFontWeight::Semibold), UIColor::rgb(0x13151A));
        y += titleHeight;
        CGFloat x = margin;
        for (std::size_t i = 0; i < row.pictures.size(); ++i) {
            if (i > 0 && i % picturesPerLine == 0) {
                x = margin;
                y += pictureHeight + captionHeight + gap;
            }
            const Picture& picture = row.pictures[i];
            const auto view = make<UIImageView>();
            view->setImage(picture.image);
            view->setFrame(CGRectMake(x, y, picture.width(), pictureHeight));
            sheet.addSubview(*view);
            addLabel(sheet, picture.caption, CGRectMake(x, y + pictureHeight, picture.width(), captionHeight),
                     UIFont::systemFontOfSize(13), UIColor::rgb(0x4A5160));
            x += picture.width() + gap;
            widestLine = std::max(widestLine, x - gap);
        }
        y += pictureHeight + captionHeight + margin;
    }
    return {widestLine + margin, y};
}

}  // namespace

int main(int count, char** arguments) {
    if (count < 3) {
        std::fprintf(stderr, "Usage: flarebox-contactsheet OUT.png FOLDER...\n");
        return 2;
    }
    std::vector<Row> rows;
    for (int i = 2; i < count; ++i) rows.push_back(readRow(arguments[i]));
    const auto sheet = make<UIView>();
    sheet->setBackgroundColor(UIColor::rgb(0xEDEFF2));
    const CGSize size = layOut(*sheet, rows);
    sheet->setFrame({{}, size});
    HeadlessHost host(size, 1);
    UIApplication::sharedApplication().keyWindow()->addSubview(*sheet);
    host.update();
    host.drawFrame();
    return host.writePNG(arguments[1]) ? 0 : 1;
}
