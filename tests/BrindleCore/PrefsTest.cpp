// Preferences: round trips through the file with awkward texts and every value type, the exact
// file form, damaged files, failures, base64, threads and the per-user file.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "XFoundationTestSupport.h"
#include "XPrefsSaver.h"
#include "XUserPrefsSaver.h"

TEST(PrefsTest, RoundTripKeepsAwkwardTextsAndEveryType)
{
    XTemporaryFolder folder;
    const XFileSpec file = folder.Spec("nested/deeper/prefs");
    const std::string awkward[] = {"plain", "a/b=c#d", "\\back\\slash\\", "line\nbreak\r\ttab", "\x01\x1F\x7F", "",
                                   "#not a comment", "trailing  ", "caf\xC3\xA9 \xE2\x82\xAC",
                                   std::string("nul\0inside", 10)};
    std::vector<UInt8> allBytes(256);
    for (int i = 0; i < 256; ++i)
        allBytes[std::size_t(i)] = UInt8(i);
    std::string wisdom;
    for (int i = 0; i < 2000; ++i)
        wisdom += "(fftw-3.3.10 fftwf_wisdom #x" + std::to_string(i * 7919) + " #x1 #x2)\n";
    {
        XPrefsSaver prefs(file);
        for (const std::string & section : awkward)
            for (const std::string & key : awkward)
                prefs.SetString(section, key, section + "|" + key);
        prefs.SetUInt32("Numbers", "max", 4294967295u);
        prefs.SetSInt64("Numbers", "min", std::numeric_limits<SInt64>::min());
        prefs.SetDouble("Numbers", "tenth", 0.1);
        prefs.SetDouble("Numbers", "negative zero", -0.0);
        prefs.SetDouble("Numbers", "infinity", -std::numeric_limits<double>::infinity());
        prefs.SetDouble("Numbers", "nan", std::numeric_limits<double>::quiet_NaN());
        prefs.SetDouble("Numbers", "tiny", 4.9406564584124654e-324);
        prefs.SetBool("Flags", "on", true);
        prefs.SetBool("Flags", "off", false);
        prefs.SetBlob("Blobs", "all bytes", allBytes);
        prefs.SetBlob("Blobs", "empty", std::vector<UInt8>());
        prefs.SetString("Wisdom", "Wisdom", wisdom);
        EXPECT_TRUE(prefs.IsChanged());
        prefs.Save();
        EXPECT_FALSE(prefs.IsChanged());
    }
    XPrefsSaver back(file);
    ASSERT_TRUE(back.Load());
    EXPECT_EQ(back.GetSkippedLineCount(), 0u);
    for (const std::string & section : awkward)
        for (const std::string & key : awkward)
            EXPECT_EQ(back.GetString(section, key).GetStdString(), section + "|" + key);
    EXPECT_EQ(back.GetUInt32("Numbers", "max"), 4294967295u);
    EXPECT_EQ(back.GetSInt64("Numbers", "min"), std::numeric_limits<SInt64>::min());
    EXPECT_EQ(back.GetDouble("Numbers", "tenth"), 0.1);
    EXPECT_TRUE(std::signbit(back.GetDouble("Numbers", "negative zero", 1.0)));
    EXPECT_EQ(back.GetDouble("Numbers", "infinity"), -std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(back.GetDouble("Numbers", "nan")));
    EXPECT_EQ(back.GetDouble("Numbers", "tiny"), 4.9406564584124654e-324);
    EXPECT_TRUE(back.GetBool("Flags", "on"));
    EXPECT_FALSE(back.GetBool("Flags", "off", true));
    EXPECT_EQ(back.GetBlob("Blobs", "all bytes"), allBytes);
    EXPECT_TRUE(back.HasKey("Blobs", "empty"));
    EXPECT_TRUE(back.GetBlob("Blobs", "empty", {9}).empty());
    EXPECT_EQ(back.GetString("Wisdom", "Wisdom").GetStdString(), wisdom);
    // Only the file is left: no temporary files beside it.
    EXPECT_EQ(folder.Names("nested/deeper"), std::vector<std::string>{"prefs"});
}

TEST(PrefsTest, FileFormIsSortedEscapedLines)
{
    XTemporaryFolder folder;
    XPrefsSaver prefs(folder.Spec("prefs"));
    prefs.SetString("b", "key", "two\nlines");
    prefs.SetString("a/x", "k=1", "v=w/z\\");
    prefs.SetString("#c", "t", "\x02");
    prefs.SetUInt32("a/x", "count", 12);
    prefs.Save();
    EXPECT_EQ(ReadText(folder.Path("prefs")), "# Brindle preferences, format 1\n"
                                              "\\#c/t=\\x02\n"
                                              "a\\/x/count=12\n"
                                              "a\\/x/k\\=1=v=w/z\\\\\n"
                                              "b/key=two\\nlines\n");
    EXPECT_EQ(prefs.MakeText(), ReadText(folder.Path("prefs")));
}

TEST(PrefsTest, DamagedFileLoadsWhatItCan)
{
    XTemporaryFolder folder;
    std::string text = "# comment\n"
                       "\n"
                       "Good/one=1\r\n"        // a line ended the other way
                       "no separator at all\n" // skipped
                       "Sec/no equals sign\n"  // skipped
                       "Sec/bad\\qescape=v\n"  // skipped: no such escape
                       "Sec/short=\\x4\n"      // skipped: a cut escape
                       "Sec/ends with=\\\n"    // skipped: a cut escape
                       "Good/two=a=b\n";       // the value may hold "="
    text += std::string("\xFF\xFE\0\x01/junk=\n", 11); // skipped: a raw NUL
    text += "Good/one=3\n";                            // the last one wins
    text += "Good/last=no line break";
    WriteText(folder.Path("prefs"), text);
    XPrefsSaver prefs(folder.Spec("prefs"));
    ASSERT_TRUE(prefs.Load());
    EXPECT_EQ(prefs.GetSkippedLineCount(), 6u);
    EXPECT_EQ(prefs.GetSections(), std::vector<XString>{"Good"});
    EXPECT_EQ(prefs.GetKeys("Good"), (std::vector<XString>{"last", "one", "two"}));
    EXPECT_EQ(prefs.GetUInt32("Good", "one"), 3u);
    EXPECT_EQ(prefs.GetString("Good", "two"), "a=b");
    EXPECT_EQ(prefs.GetString("Good", "last"), "no line break");

    // Random bytes never crash a load.
    std::string noise;
    UInt32 state = 12345;
    for (int i = 0; i < 20000; ++i)
    {
        state = state * 1664525u + 1013904223u;
        noise += char(state >> 24);
    }
    WriteText(folder.Path("prefs"), noise);
    EXPECT_NO_THROW(prefs.Load());
}

TEST(PrefsTest, TypedReadsFallBackToTheDefault)
{
    XPrefsSaver prefs(XFileSpec(XString("/nonexistent/prefs")));
    prefs.SetString("S", "text", "12x");
    prefs.SetString("S", "big", "4294967296");
    prefs.SetString("S", "negative", "-1");
    prefs.SetString("S", "blank", " 5");
    prefs.SetString("S", "yes", "1");
    prefs.SetString("S", "maybe", "maybe");
    prefs.SetString("S", "not base64", "Zg=");
    EXPECT_EQ(prefs.GetUInt32("S", "missing", 7), 7u);
    EXPECT_EQ(prefs.GetUInt32("S", "text", 7), 7u);
    EXPECT_EQ(prefs.GetUInt32("S", "big", 7), 7u);
    EXPECT_EQ(prefs.GetUInt32("S", "negative", 7), 7u);
    EXPECT_EQ(prefs.GetSInt64("S", "negative", 7), -1);
    EXPECT_EQ(prefs.GetSInt64("S", "blank", 7), 7);
    EXPECT_EQ(prefs.GetDouble("S", "text", 2.5), 2.5);
    EXPECT_TRUE(prefs.GetBool("S", "yes"));
    EXPECT_TRUE(prefs.GetBool("S", "maybe", true));
    EXPECT_FALSE(prefs.GetBool("S", "maybe", false));
    EXPECT_EQ(prefs.GetBlob("S", "not base64", {1, 2}), (std::vector<UInt8>{1, 2}));
    EXPECT_EQ(prefs.GetString("S", "missing", "fallback"), "fallback");
    EXPECT_EQ(prefs.GetString("Nope", "missing"), "");
}

TEST(PrefsTest, RemoveClearAndChangeTracking)
{
    XTemporaryFolder folder;
    XPrefsSaver prefs(folder.Spec("prefs"));
    EXPECT_FALSE(prefs.Load()); // no file yet: empty
    EXPECT_FALSE(prefs.IsChanged());
    prefs.SetUInt32("A", "1", 1);
    prefs.SetUInt32("A", "2", 2);
    prefs.SetUInt32("B", "1", 1);
    prefs.Save();
    prefs.SetUInt32("A", "1", 1); // the same value is no change
    EXPECT_FALSE(prefs.IsChanged());
    EXPECT_TRUE(prefs.Remove("A", "1"));
    EXPECT_FALSE(prefs.Remove("A", "1"));
    EXPECT_TRUE(prefs.IsChanged());
    EXPECT_EQ(prefs.RemoveSection("A"), 1u);
    EXPECT_EQ(prefs.RemoveSection("A"), 0u);
    EXPECT_EQ(prefs.GetSections(), std::vector<XString>{"B"});
    // Load goes back to the file.
    EXPECT_TRUE(prefs.Load());
    EXPECT_EQ(prefs.GetKeys("A"), (std::vector<XString>{"1", "2"}));
    prefs.Clear();
    EXPECT_TRUE(prefs.GetSections().empty());
}

TEST(PrefsTest, FailuresAreExceptionsAndLeaveTheStore)
{
    XTemporaryFolder folder;
    WriteText(folder.Path("plain"), "x");
    // A folder cannot be made under a file.
    XPrefsSaver blocked(folder.Spec("plain/sub/prefs"));
    blocked.SetUInt32("A", "b", 1);
    EXPECT_EQ(ErrorOf([&] { blocked.Save(); }), UInt32(kErrPreferences));
    EXPECT_TRUE(blocked.IsChanged());
    // A folder is not a settings file.
    XPrefsSaver onFolder(folder.Spec("."));
    onFolder.SetUInt32("A", "b", 1);
    EXPECT_THROW(onFolder.Load(), XException);
    EXPECT_EQ(onFolder.GetUInt32("A", "b"), 1u);
    EXPECT_THROW(XPrefsSaver(XFileSpec()).Save(), XException);
}

TEST(PrefsTest, Base64MatchesTheStandardVectors)
{
    const char * plain[] = {"", "f", "fo", "foo", "foob", "fooba", "foobar"};
    const char * coded[] = {"", "Zg==", "Zm8=", "Zm9v", "Zm9vYg==", "Zm9vYmE=", "Zm9vYmFy"};
    std::vector<UInt8> data;
    for (int i = 0; i < 7; ++i)
    {
        std::string text = plain[i];
        EXPECT_EQ(XPrefsSaver::EncodeBase64(text.data(), text.size()), coded[i]);
        ASSERT_TRUE(XPrefsSaver::DecodeBase64(coded[i], data));
        EXPECT_EQ(std::string(data.begin(), data.end()), text);
    }
    for (const char * bad : {"Zg=", "Zh==", "Zm9=", "Z===", "Zm9v!A==", "Zg==Zg==", "Zm 9v", "=Zg="})
        EXPECT_FALSE(XPrefsSaver::DecodeBase64(bad, data)) << bad;
}

TEST(PrefsTest, ThreadsSetWhileAnotherSaves)
{
    XTemporaryFolder folder;
    XPrefsSaver prefs(folder.Spec("prefs"));
    RunOnThreads(5, [&prefs](int aWorker) { // four set values while the fifth saves
        std::string section = "W"; // appended: g++ 12 at -O3 warns falsely of "W" + std::to_string(...)
        section += std::to_string(aWorker);
        for (UInt32 i = 0; i < 200; ++i)
        {
            if (aWorker < 4)
                prefs.SetUInt32(section, std::to_string(i), i * 3);
            else if (i % 40 == 0)
                prefs.Save();
        }
    });
    prefs.Save();
    XPrefsSaver back(folder.Spec("prefs"));
    back.Load();
    for (int worker = 0; worker < 4; ++worker)
    {
        ASSERT_EQ(back.GetKeys("W" + std::to_string(worker)).size(), 200u);
        EXPECT_EQ(back.GetUInt32("W" + std::to_string(worker), "199"), 597u);
    }
    EXPECT_EQ(folder.Names(), std::vector<std::string>{"prefs"});
}

TEST(PrefsTest, UserPrefsFollowTheEnvironment)
{
    XTemporaryFolder folder;
    {
        XScopedEnvironment prefsFile("BRINDLE_PREFS_FILE", nullptr);
        XScopedEnvironment testMode("BRINDLE_TEST_MODE", nullptr);
        XScopedEnvironment config("XDG_CONFIG_HOME", "/somewhere/config");
        EXPECT_EQ(XUserPrefsSaver::GetUserPrefsFileSpec().GetPath(), "/somewhere/config/brindle/preferences");
        XScopedEnvironment relative("XDG_CONFIG_HOME", "relative/config"); // not absolute: ignored
        XScopedEnvironment home("HOME", "/home/someone");
        EXPECT_EQ(XUserPrefsSaver::GetUserPrefsFileSpec().GetPath(), "/home/someone/.config/brindle/preferences");
        XScopedEnvironment inTests("BRINDLE_TEST_MODE", "1");
        EXPECT_NE(XUserPrefsSaver::GetUserPrefsFileSpec().GetPath().GetStdString().find("brindle-test-"),
                  std::string::npos);
    }
    XScopedEnvironment prefsFile("BRINDLE_PREFS_FILE", folder.Path("user/preferences").c_str());
    {
        XUserPrefsSaver prefs;
        EXPECT_TRUE(prefs.GetSections().empty());
        prefs.SetString("Wisdom", "Wisdom", "(fftw-3.3.10 fftwf_wisdom)\n");
        prefs.SetString("Wisdom", "BuildDate", "2024-05-01");
        prefs.Save();
    }
    XUserPrefsSaver again;
    EXPECT_EQ(again.GetString("Wisdom", "Wisdom"), "(fftw-3.3.10 fftwf_wisdom)\n");
    EXPECT_EQ(again.GetString("Wisdom", "BuildDate"), "2024-05-01");

    // An unreadable file (here a folder) leaves an empty store, not a failure.
    ::mkdir(folder.Path("folder").c_str(), 0700);
    XScopedEnvironment log("BRINDLE_SESSION_LOG", folder.Path("session.log").c_str());
    XScopedEnvironment onFolder("BRINDLE_PREFS_FILE", folder.Path("folder").c_str());
    XUserPrefsSaver empty;
    EXPECT_TRUE(empty.GetSections().empty());
    EXPECT_NE(ReadText(folder.Path("session.log")).find("preferences not read"), std::string::npos);
}
