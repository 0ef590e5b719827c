#include "app/settings/ModelFamily.h"

#include <QStringView>

#include <algorithm>

namespace zorel::app::settings {

namespace {

struct Texts
{
    ModelFamily family;
    QStringView rawValue;
    QStringView title;
    QStringView summary;
    QStringView symbolName;
    QStringView trainingDataHint;
};

constexpr std::array table{
    Texts{ModelFamily::textLanguage, u"text_language", u"Text Language Model",
          u"Train a causal LM for text completion and chat.", u"text.alignleft", u""},
    Texts{
        ModelFamily::imageGeneration, u"image_generation", u"Image Generation",
        u"Train a diffusion model to generate images from noise.", u"photo.on.rectangle.angled",
        u"Put images in Training Data (PNG, JPEG, WebP). Each image can have a matching .txt caption file."},
    Texts{ModelFamily::multimodal, u"multimodal", u"Text + Image (Multimodal)",
          u"Train a text-conditioned model for prompt-to-image generation.", u"text.below.photo",
          u"Put image + caption pairs in Training Data — e.g. photo.jpg with photo.txt beside it."},
};

static_assert(std::ranges::equal(table, allModelFamilies, {}, &Texts::family));

const Texts &textsOf(ModelFamily family)
{
    return table.at(static_cast<std::size_t>(family));
}

} // namespace

QString rawValue(ModelFamily family)
{
    return textsOf(family).rawValue.toString();
}

QString title(ModelFamily family)
{
    return textsOf(family).title.toString();
}

QString summary(ModelFamily family)
{
    return textsOf(family).summary.toString();
}

QString symbolName(ModelFamily family)
{
    return textsOf(family).symbolName.toString();
}

QString trainingDataHint(ModelFamily family)
{
    return textsOf(family).trainingDataHint.toString();
}

ModelFamily modelFamilyFromRawValue(const QString &text)
{
    const auto found = std::ranges::find(table, QStringView(text), &Texts::rawValue);
    return found == table.end() ? ModelFamily::textLanguage : found->family;
}

} // namespace zorel::app::settings
