#pragma once
// Fills SkinStyles from a skin's "skin.ini". Sections are read in a fixed
// order because later ones start from earlier ones: the list views seed the
// week, day, agenda and quick views, and the day view seeds the agenda view.
// Keys that are absent or empty leave a field as it was.
namespace mirodate {

class IniFile;
class SkinArchive;
struct SkinStyles;

void ApplySkin(const IniFile& ini, SkinArchive& archive, bool highResolution, SkinStyles& styles);

} // namespace mirodate
