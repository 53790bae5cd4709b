// The editor's attendee and attachment pages driven like a user drives
// them: contacts' addresses picked by tap and narrowed by typing, paths and
// web addresses typed, attachments opened and removed; and the labels of the
// subject and location fields on both screens.
#include "forms/AttachmentUri.h"
#include "forms/AttachmentsPage.h"
#include "forms/AttendeeDialog.h"
#include "platform/TextUtil.h"
#include "skin/SkinStyles.h"
#include "store/IcalHandle.h"
#include "store/IcalText.h"
#include "tests/forms/EditorFixture.h"

#include <cstdlib>
#include <filesystem>
#include <optional>

namespace mirodate::test {
namespace {

using Row = AppointmentDraft::Row;
using Mode = AppointmentDraft::Mode;

class AttendeesAndAttachmentsTest : public EditorFixture {
protected:
    void SetUp() override {
        EditorFixture::SetUp();
        if (const char* home = std::getenv("HOME"))
            savedHome_ = home;
    }
    void TearDown() override {
        AttendeeDialog::SetOpenObserver(nullptr);
        AttachmentsPage::SetOpenObserver(nullptr);
        if (savedHome_)
            setenv("HOME", savedHome_->c_str(), 1);
        EditorFixture::TearDown();
    }
    // Taps row `index` of a page's list like a finger.
    void TapListRow(TouchListCtrlWnd& list, int index) {
        ASSERT_LT(index, list.ItemCount());
        list.Scroller().SetPosition(list.Scroller().ItemTop(index));
        RECT rect;
        GetWindowRect(list.GetHwnd(), &rect);
        const int y = rect.top + list.Scroller().Viewport().top + list.Scroller().ItemTop(index) -
                      list.Scroller().Position() + list.Item(index)->Height() / 2;
        Wait(600); // the list's guard between taps
        Tap(rect.left + (rect.right - rect.left) / 3, y);
        windows_->RunUntilIdle();
    }
    // The values of one property of the file's event.
    std::vector<std::string> Properties(const std::string& file, icalproperty_kind kind) {
        std::vector<std::string> values;
        IcalComponentPtr calendar = IcalText::Parse(ReadFile(file));
        if (!calendar)
            return values;
        icalcomponent* event = icalcomponent_get_first_component(calendar.get(), ICAL_VEVENT_COMPONENT);
        for (icalproperty* p = icalcomponent_get_first_property(event, kind); p;
             p = icalcomponent_get_next_property(event, kind)) {
            // Unfolded, so that long values can be searched.
            std::string text = icalproperty_as_ical_string(p);
            for (std::size_t at = text.find("\r\n "); at != std::string::npos; at = text.find("\r\n ", at))
                text.erase(at, 3);
            values.push_back(text);
        }
        return values;
    }
    static std::vector<std::u16string> Addresses(const std::vector<AppointmentDraft::Person>& people) {
        std::vector<std::u16string> addresses;
        for (const auto& person : people)
            addresses.push_back(person.address);
        return addresses;
    }

    std::optional<std::string> savedHome_;
};

TEST_F(AttendeesAndAttachmentsTest, AttendeesArePickedFromTheContactsNarrowedByTypingOrTyped) {
    WriteFile("contacts/a.vcf",
              "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:a\r\nFN:Anna Berg\r\n"
              "EMAIL;TYPE=WORK:anna@work.example\r\nEMAIL;TYPE=HOME:anna@home.example\r\nEND:VCARD\r\n");
    WriteFile("contacts/b.vcf", "BEGIN:VCARD\r\nVERSION:4.0\r\nUID:b\r\nFN:ben ortiz\r\n"
                                "item1.EMAIL;PREF=1:ben@ortiz.example\r\nEND:VCARD\r\n");
    WriteFile("contacts/c.vcf",
              "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:c\r\nFN:Carl Dorn\r\nEMAIL:carl@dorn.example\r\n"
              "END:VCARD\r\n");
    WriteFile("contacts/n.vcf",
              "BEGIN:VCARD\r\nVERSION:3.0\r\nUID:n\r\nFN:No Mail\r\nBDAY:19800101\r\nEND:VCARD\r\n");
    AddTimed("meet", "Planning", "20240320T100000Z", "20240320T110000Z",
             "ATTENDEE;CN=Carl Dorn:mailto:carl@dorn.example\r\n");
    OpenStore();
    bool shown = false;
    AttendeeDialog::SetOpenObserver([&](AttendeeDialog& page) {
        shown = true;
        // Every address of every contact, by name whatever the case; Carl is invited already.
        EXPECT_EQ(
            Addresses(page.ContactChoices()),
            (std::vector<std::u16string>{u"anna@work.example", u"anna@home.example", u"ben@ortiz.example"}));
        EXPECT_EQ(page.ContactChoices()[0].name, u"Anna Berg");
        // Typing narrows the contacts by name or address, case folded.
        Type("ORTIZ");
        ASSERT_EQ(Addresses(page.ContactChoices()), std::vector<std::u16string>{u"ben@ortiz.example"});
        // Carl, the band over the contacts, then Ben: a tap invites him.
        TapListRow(page.List(), 2);
        EXPECT_EQ(Addresses(page.People()),
                  (std::vector<std::u16string>{u"carl@dorn.example", u"ben@ortiz.example"}));
        EXPECT_TRUE(page.Field().GetText().empty());
        EXPECT_EQ(Addresses(page.ContactChoices()),
                  (std::vector<std::u16string>{u"anna@work.example", u"anna@home.example"}));
        Type("home");
        EXPECT_EQ(Addresses(page.ContactChoices()), std::vector<std::u16string>{u"anna@home.example"});
        // Someone who is no contact is typed in full; OK takes the field's address.
        page.Field().SetText(u"");
        Type("Dora <dora@example.org>");
        EXPECT_TRUE(page.ContactChoices().empty());
        page.Accept();
    });
    AppointmentEditor& editor =
        Open(AppointmentDraft::ForRecord(RecordOf(ItemOn(DateTime(2024, 3, 20)).oid), Mode::Item));
    TapRow(Row::Attendees);
    ASSERT_TRUE(shown);
    EXPECT_EQ(editor.Draft().Value(Row::Attendees), u"Carl Dorn, ben ortiz, Dora");
    answers = {2}; // no mail to the attendees
    TapWindow(editor.OkButton().GetHwnd());
    ASSERT_TRUE(editor.WasSaved());
    EXPECT_EQ(questions.back(), u"QuestionNotifyAttendees");
    const auto attendees = Properties("calendar/meet.ics", ICAL_ATTENDEE_PROPERTY);
    ASSERT_EQ(attendees.size(), 3u);
    EXPECT_NE(attendees[1].find("CN=ben ortiz:mailto:ben@ortiz.example"), std::string::npos) << attendees[1];
    EXPECT_NE(attendees[2].find("CN=Dora:mailto:dora@example.org"), std::string::npos) << attendees[2];
}

TEST_F(AttendeesAndAttachmentsTest, AttachmentsAreTypedAsPathsOrAddressesOpenedAndRemoved) {
    const std::string home = dir_ + "/home";
    std::filesystem::create_directories(home + "/Docs");
    setenv("HOME", home.c_str(), 1);
    const std::string agenda = home + "/Docs/Agenda März #2.pdf";
    std::ofstream(agenda) << "%PDF";
    std::ofstream(home + "/notes.txt") << "notes";
    // A web address we list, and inline data we neither list nor touch.
    AddTimed("att", "Review", "20240320T100000Z", "20240320T110000Z",
             "ATTACH:https://example.org/plan\r\nATTACH;ENCODING=BASE64;VALUE=BINARY;FMTTYPE=text/"
             "plain:aGVsbG8=\r\n");
    OpenStore();
    bool shown = false;
    AttachmentsPage::SetOpenObserver([&](AttachmentsPage& page) {
        shown = true;
        EXPECT_EQ(page.Attachments(), std::vector<std::u16string>{u"https://example.org/plan"});
        // Nothing is taken that names no file: missing, relative, a folder.
        for (const std::u16string bad : {u"/no/such/file.pdf", u"notes.txt", u"~/Docs", u"   "})
            EXPECT_FALSE(page.Add(bad)) << Utf16ToUtf8(bad);
        EXPECT_EQ(questions, std::vector<std::u16string>(4, u"editor.NoSuchFile"));
        EXPECT_TRUE(page.Add(Utf8ToUtf16(agenda)));
        EXPECT_TRUE(page.Add(Utf8ToUtf16(agenda))); // once only
        ASSERT_EQ(page.Attachments().size(), 2u);
        EXPECT_EQ(page.Attachments()[1],
                  Utf8ToUtf16("file://" + home + "/Docs/Agenda%20M%C3%A4rz%20%232.pdf"));
        // Typed under the home folder, then OK below takes it.
        Type("~/notes.txt");
        // A tap on the file offers it: opened with its real path.
        answers = {AttachmentsPage::kAnswerOpen};
        TapListRow(page.List(), 1);
        ASSERT_EQ(services_->Programs().size(), 1u);
        EXPECT_EQ(services_->Programs()[0].back(), agenda);
        // A tap on the web address removes it.
        answers = {AttachmentsPage::kAnswerRemove};
        TapListRow(page.List(), 0);
        EXPECT_EQ(page.Attachments().size(), 1u);
        page.Accept();
    });
    AppointmentEditor& editor =
        Open(AppointmentDraft::ForRecord(RecordOf(ItemOn(DateTime(2024, 3, 20)).oid), Mode::Item));
    TapRow(Row::Attachments);
    ASSERT_TRUE(shown);
    EXPECT_EQ(editor.Draft().Value(Row::Attachments), u"[FILE] Agenda März #2.pdf, [FILE] notes.txt");
    TapWindow(editor.OkButton().GetHwnd());
    ASSERT_TRUE(editor.WasSaved());
    const auto attach = Properties("calendar/att.ics", ICAL_ATTACH_PROPERTY);
    ASSERT_EQ(attach.size(), 3u);
    EXPECT_NE(attach[0].find("aGVsbG8="), std::string::npos) << attach[0];
    EXPECT_NE(attach[1].find("ATTACH:file://" + home + "/Docs/Agenda%20M%C3%A4rz%20%232.pdf"),
              std::string::npos);
    EXPECT_NE(attach[2].find("ATTACH:file://" + home + "/notes.txt"), std::string::npos);
    // Read back as written.
    EXPECT_EQ(RecordOf(editor.Draft().Original().oid).attachments.size(), 2u);
}

TEST(AttachmentUri, PathsAndAddressesRoundTrip) {
    for (const std::string path : {"/tmp/a b/ü€.txt", "/x/100%/#?&=+;", "/plain/name.pdf"})
        EXPECT_EQ(AttachmentUri::LocalPath(AttachmentUri::FromPath(path)), path) << path;
    EXPECT_EQ(AttachmentUri::FromPath("/a b"), u"file:///a%20b");
    EXPECT_EQ(AttachmentUri::LocalPath(u"FILE://localhost/a%2Fb"), "/a/b");
    for (const std::u16string notLocal :
         {u"https://example.org/a", u"file:relative", u"file://host/x", u"/bare", u"file:///a%00b"})
        EXPECT_EQ(AttachmentUri::LocalPath(notLocal), "") << Utf16ToUtf8(notLocal);
    EXPECT_EQ(AttachmentUri::DisplayName(u"file:///docs/My%20Plan.odt"), u"My Plan.odt");
    EXPECT_EQ(AttachmentUri::DisplayName(u"https://example.org/x"), u"https://example.org/x");
    for (const std::u16string web : {u"https://example.org/x", u"ftp://files.example/a", u"webcal+x://a"})
        EXPECT_TRUE(AttachmentUri::IsWebAddress(web)) << Utf16ToUtf8(web);
    for (const std::u16string other :
         {u"file:///a", u"://a", u"1http://a", u"http://", u"http://a b", u"/a://b"})
        EXPECT_FALSE(AttachmentUri::IsWebAddress(other)) << Utf16ToUtf8(other);
    // Pasted megabytes are refused, not stored.
    EXPECT_EQ(AttachmentUri::FromTyped(u"https://example.org/" + std::u16string(100000, u'a')), u"");
}

TEST_F(AttendeesAndAttachmentsTest, SubjectAndLocationFieldsAreLabelledOnBothScreens) {
    LanguageTable::Instance().SetText(
        u"LANGUAGE=en\naddmodify.Subject=Subject\naddmodify.Location=Location\n");
    OpenStore();
    for (auto [width, height] : {std::pair{480, 640}, std::pair{240, 320}}) {
        editor_.reset();
        UiTest::Open(width, height);
        AppointmentEditor& editor = Open(AppointmentDraft::NewOn(DateTime(2024, 3, 20), DateTime::Now()));
        const COLORREF background = SkinStyles::Current().inputForms.colorBg;
        const COLORREF ink = SkinStyles::Current().inputForms.colorItemText;
        RECT subject, location;
        GetWindowRect(editor.SubjectField().GetHwnd(), &subject);
        GetWindowRect(editor.LocationField().GetHwnd(), &location);
        EXPECT_EQ(subject.left, location.left);
        EXPECT_LE(subject.left, width / 3 + width / 60);
        EXPECT_GE(subject.right - subject.left, width / 2) << "the field keeps most of the width";
        // Left of each field stands its label: ink on the form's background, inside the field's height.
        for (const RECT& field : {subject, location}) {
            int inked = 0;
            for (int y = field.top; y < field.bottom; ++y)
                for (int x = 0; x < field.left; ++x) {
                    const COLORREF pixel = FramePixel(x, y);
                    if (pixel == ink)
                        ++inked;
                    else if (pixel != background)
                        ++inked; // antialiased edges
                }
            EXPECT_GT(inked, 10) << width;
            for (int x = 0; x < field.left; ++x) {
                EXPECT_EQ(FramePixel(x, field.top - 1), background) << "above the label, x " << x;
                EXPECT_EQ(FramePixel(x, field.bottom), background) << "below the label, x " << x;
            }
        }
    }
}

} // namespace
} // namespace mirodate::test
