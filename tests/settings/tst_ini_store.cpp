#include "tests/settings/ini_test.h"

using namespace initest;

class IniStore : public IniTest
{
};

TEST_F(IniStore, linesBeforeAnyHeaderStayInTheLeadingSection)
{
    const Store store = loaded("a=1\n# note\n[0]\na=2\n");
    EXPECT_STREQ(ini_get(store.get(), "a"), "1");
    EXPECT_EQ(saved(store), "a=1\n# note\n[0]\na=2\n");
}

TEST_F(IniStore, keyAndSignAloneHasAnAbsentValue)
{
    const Store store = loaded("k=\n");
    EXPECT_STREQ(ini_get(store.get(), "k"), "");
    const char *key = nullptr;
    const char *value = "unset";
    ASSERT_EQ(ini_next_entry(store.get(), &key, &value), 0);
    EXPECT_STREQ(key, "k");
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(saved(store), "k=\n");
}

TEST_F(IniStore, valueOfTwoWordsLosesOuterBlanksAndIsSavedInQuotes)
{
    const Store store = loaded("k=   two words \t\n");
    EXPECT_STREQ(ini_get(store.get(), "k"), "two words");
    EXPECT_EQ(saved(store), "k=\"two words\"\n");
}

TEST_F(IniStore, missingClosingQuoteCostsTheLastCharacter)
{
    EXPECT_STREQ(ini_get(loaded("k=\"abc\n").get(), "k"), "ab");
    EXPECT_STREQ(ini_get(loaded("k=\"abc\"\n").get(), "k"), "abc");
    EXPECT_STREQ(ini_get(loaded("k=\"\n").get(), "k"), "");
    EXPECT_STREQ(ini_get(loaded("k=\"a\n").get(), "k"), "");
}

TEST_F(IniStore, valueTakesAllFurtherEqualSigns)
{
    EXPECT_STREQ(ini_get(loaded("a=b=c\n").get(), "a"), "b=c");
    EXPECT_STREQ(ini_get(loaded("a==b\n").get(), "a"), "=b");
}

TEST_F(IniStore, leadingEqualSignsAreSkipped)
{
    const Store store = loaded("==x\n");
    EXPECT_STREQ(ini_get(store.get(), "x"), "");
    EXPECT_EQ(saved(store), "x=\n");
}

TEST_F(IniStore, lineOfEqualSignsOnlyIsKept)
{
    EXPECT_EQ(rewritten("===\n"), "===\n");
}

TEST_F(IniStore, equalHeadersMakeTwoSectionsAndTheFirstIsFound)
{
    const Store store = loaded("[0]\nk=first\n[0]\nk=second\n");
    ASSERT_EQ(ini_select_section(store.get(), "0"), 0);
    EXPECT_STREQ(ini_get(store.get(), "k"), "first");
    const char *name = nullptr;
    ASSERT_EQ(ini_next_section(store.get(), &name), 0);
    EXPECT_STREQ(name, "0");
    EXPECT_STREQ(ini_get(store.get(), "k"), "second");
    EXPECT_EQ(saved(store), "[0]\nk=first\n[0]\nk=second\n");
}

TEST_F(IniStore, deletingTheFirstOfEqualSectionsUncoversTheSecond)
{
    const Store store = loaded("[0]\nk=first\n[1]\n[0]\nk=second\n");
    ASSERT_EQ(ini_delete_section(store.get(), "0"), 0);
    ASSERT_EQ(ini_select_section(store.get(), "0"), 0);
    EXPECT_STREQ(ini_get(store.get(), "k"), "second");
    ASSERT_EQ(ini_delete_section(store.get(), "0"), 0);
    EXPECT_EQ(ini_select_section(store.get(), "0"), -1);
    ASSERT_EQ(ini_use_section(store.get(), "0"), 0);
    EXPECT_EQ(saved(store), "[1]\n[0]\n");
}

TEST_F(IniStore, equalKeysStayAndTheFirstIsFound)
{
    const Store store = loaded("k=1\nk=2\n");
    EXPECT_STREQ(ini_get(store.get(), "k"), "1");
    ASSERT_EQ(ini_set(store.get(), "k", "3"), 0);
    EXPECT_EQ(saved(store), "k=3\nk=2\n");
    ASSERT_EQ(ini_delete_key(store.get(), "k"), 0);
    EXPECT_STREQ(ini_get(store.get(), "k"), "2");
}

TEST_F(IniStore, namesAreComparedByExactBytes)
{
    const Store store = loaded("Key=1\n[Sec]\n");
    EXPECT_EQ(ini_get(store.get(), "key"), nullptr);
    EXPECT_EQ(ini_select_section(store.get(), "sec"), -1);
    EXPECT_EQ(ini_select_section(store.get(), "Sec"), 0);
}

TEST_F(IniStore, lineOf300CharactersIsALineOf255AndALineOf45)
{
    const Store store = loaded("k=" + std::string(251, 'v') + "=w" + std::string(45, 'x') + "\n");
    EXPECT_EQ(ini_get(store.get(), "k"), std::string(251, 'v') + "=w");
    EXPECT_EQ(saved(store), "k=" + std::string(251, 'v') + "=w\n" + std::string(45, 'x') + "\n");
}

TEST_F(IniStore, readModeMarksDirtyAndWritesNothing)
{
    write(m_file, "k=1\n");
    Store store = open(m_file, "r");
    EXPECT_EQ(store->dirty, 0);
    ASSERT_EQ(ini_set(store.get(), "k", "2"), 0);
    EXPECT_EQ(store->dirty, 1);
    EXPECT_EQ(ini_flush(store.get()), 0);
    EXPECT_EQ(store->dirty, 1);
    store.reset();
    EXPECT_EQ(read(m_file), "k=1\n");
}

TEST_F(IniStore, writeModeDoesNotReadAndReplacesTheFile)
{
    write(m_file, "old=1\n");
    Store store = open(m_file, "w");
    EXPECT_EQ(ini_get(store.get(), "old"), nullptr);
    ASSERT_EQ(ini_set(store.get(), "new", "1"), 0);
    store.reset();
    EXPECT_EQ(read(m_file), "new=1\n");
}

TEST_F(IniStore, closingWithoutAChangeWritesNothing)
{
    write(m_file, "k=\" as it was\"\n");
    open(m_file, "w+").reset();
    open(m_file, "w").reset();
    EXPECT_EQ(read(m_file), "k=\" as it was\"\n");
}

TEST_F(IniStore, modesAreComparedExactly)
{
    EXPECT_EQ(open(m_file, "r")->mode, INI_READ);
    EXPECT_EQ(open(m_file, "w")->mode, INI_WRITE);
    EXPECT_EQ(open(m_file, "w+")->mode, INI_READ | INI_WRITE);
    EXPECT_EQ(open(m_file, "rw")->mode, 0);
    EXPECT_EQ(open(m_file, "R")->mode, 0);
    EXPECT_EQ(open(m_file, "")->mode, 0);
    EXPECT_EQ(open(m_file, nullptr)->mode, 0);
}

TEST_F(IniStore, missingFileIsAnEmptyStore)
{
    const Store store = open(m_folder / "absent", "r");
    ASSERT_NE(store, nullptr);
    EXPECT_EQ(store->dirty, 0);
    EXPECT_EQ(ini_next_entry(store.get(), nullptr, nullptr), -1);
    EXPECT_EQ(ini_next_section(store.get(), nullptr), -1);
    EXPECT_NE(open(m_folder, "r"), nullptr); // a folder
}

TEST_F(IniStore, storeWithoutAPathIsInMemory)
{
    const Store store = inMemory();
    ASSERT_EQ(ini_set(store.get(), "k", "v"), 0);
    EXPECT_EQ(ini_flush(store.get()), 0);
    EXPECT_EQ(store->dirty, 1);
    EXPECT_STREQ(ini_get(store.get(), "k"), "v");
}

TEST_F(IniStore, getTellsMissingFromEmpty)
{
    const Store store = loaded("k=\n");
    EXPECT_EQ(ini_get(store.get(), "absent"), nullptr);
    EXPECT_EQ(ini_get(store.get(), nullptr), nullptr);
    EXPECT_STREQ(ini_get_string(store.get(), "absent"), "");
    EXPECT_STREQ(ini_get_string(store.get(), "k"), "");
}

TEST_F(IniStore, setReplacesAppendsAndEmpties)
{
    const Store store = loaded("[0]\na=1\n# end\n[1]\n");
    ASSERT_EQ(ini_select_section(store.get(), "0"), 0);
    EXPECT_EQ(ini_set(store.get(), "a", "x"), 0);
    EXPECT_EQ(ini_set(store.get(), "b", "y z"), 0);
    EXPECT_EQ(ini_set(store.get(), "c", ""), 0);
    EXPECT_EQ(ini_set(store.get(), "d", nullptr), 0);
    EXPECT_EQ(ini_set(store.get(), nullptr, "v"), -1);
    EXPECT_EQ(saved(store), "[0]\na=x\n# end\nb=\"y z\"\nc=\nd=\n[1]\n");
    EXPECT_EQ(ini_set(store.get(), "a", ""), 0);
    EXPECT_EQ(ini_set(store.get(), "b", nullptr), 0);
    EXPECT_EQ(saved(store), "[0]\na=\n# end\nb=\nc=\nd=\n[1]\n");
}

TEST_F(IniStore, newEmptyValueIsAnEmptyStringAndAReplacedOneIsAbsent)
{
    const Store store = inMemory();
    const char *value = nullptr;
    ASSERT_EQ(ini_set(store.get(), "k", ""), 0);
    ASSERT_EQ(ini_next_entry(store.get(), nullptr, &value), 0);
    EXPECT_STREQ(value, "");
    ASSERT_EQ(ini_set(store.get(), "k", ""), 0);
    ASSERT_EQ(ini_select_section(store.get(), ""), 0);
    ASSERT_EQ(ini_next_entry(store.get(), nullptr, &value), 0);
    EXPECT_EQ(value, nullptr);
}

TEST_F(IniStore, setCanTakeTheValueThatItReplaces)
{
    const Store store = loaded("k=value\n");
    ASSERT_EQ(ini_set(store.get(), "k", ini_get(store.get(), "k")), 0);
    EXPECT_STREQ(ini_get(store.get(), "k"), "value");
}

TEST_F(IniStore, everyChangeSetsDirtyAndAWriteClearsIt)
{
    const Store store = loaded("a=1\nb=2\n[0]\n");
    const auto changed = [&](int32_t result) {
        EXPECT_EQ(result, 0);
        const bool dirty = store->dirty == 1;
        EXPECT_EQ(ini_flush(store.get()), 0);
        return dirty && store->dirty == 0;
    };
    EXPECT_TRUE(changed(ini_set(store.get(), "a", "3")));
    EXPECT_TRUE(changed(ini_rename_key(store.get(), "a", "c")));
    EXPECT_TRUE(changed(ini_delete_key(store.get(), "b")));
    EXPECT_TRUE(changed(ini_delete_section(store.get(), "0")));
    EXPECT_FALSE(changed(ini_use_section(store.get(), "made")));
    EXPECT_FALSE(changed(ini_select_section(store.get(), "made")));
}

TEST_F(IniStore, failedChangesDoNotSetDirty)
{
    const Store store = inMemory();
    EXPECT_EQ(ini_delete_key(store.get(), "absent"), -1);
    EXPECT_EQ(ini_rename_key(store.get(), "absent", "x"), -1);
    EXPECT_EQ(ini_delete_section(store.get(), "absent"), -1);
    EXPECT_EQ(store->dirty, 0);
}

TEST_F(IniStore, useMakesASectionAtTheEndOnce)
{
    const Store store = loaded("[b]\n");
    EXPECT_EQ(ini_use_section(store.get(), "a"), 0);
    EXPECT_EQ(ini_use_section(store.get(), "b"), 0);
    EXPECT_EQ(ini_use_section(store.get(), "a"), 0);
    EXPECT_EQ(saved(store), "[b]\n[a]\n");
}

TEST_F(IniStore, selectingAMissingSectionKeepsTheSelection)
{
    const Store store = loaded("k=0\n[a]\nk=1\n");
    ASSERT_EQ(ini_select_section(store.get(), "a"), 0);
    EXPECT_EQ(ini_select_section(store.get(), "absent"), -1);
    EXPECT_STREQ(ini_get(store.get(), "k"), "1");
    EXPECT_EQ(ini_select_section(store.get(), nullptr), 0);
    EXPECT_STREQ(ini_get(store.get(), "k"), "0");
    EXPECT_EQ(ini_use_section(store.get(), ""), 0);
    EXPECT_STREQ(ini_get(store.get(), "k"), "0");
}

TEST_F(IniStore, deletingTheSelectedSectionSelectsTheLeadingOne)
{
    const Store store = loaded("k=0\n[a]\nk=1\n");
    ASSERT_EQ(ini_select_section(store.get(), "a"), 0);
    ASSERT_EQ(ini_delete_section(store.get(), "a"), 0);
    EXPECT_STREQ(ini_get(store.get(), "k"), "0");
    EXPECT_EQ(ini_delete_section(store.get(), ""), -1);
    EXPECT_EQ(ini_delete_section(store.get(), nullptr), -1);
    EXPECT_EQ(saved(store), "k=0\n");
}

TEST_F(IniStore, nextEntryVisitsEveryLineAndSelectingStartsAgain)
{
    const Store store = loaded("[0]\n# c\na=1\n\nb=\n");
    ASSERT_EQ(ini_select_section(store.get(), "0"), 0);
    const auto visit = [&] {
        std::string seen;
        const char *key = nullptr;
        const char *value = nullptr;
        while (ini_next_entry(store.get(), &key, &value) == 0)
            seen += std::string(key ? key : "-") + ":" + (value ? value : "-") + " ";
        return seen;
    };
    EXPECT_EQ(visit(), "-:- a:1 -:- b:- ");
    EXPECT_EQ(visit(), "");
    ASSERT_EQ(ini_select_section(store.get(), "0"), 0);
    EXPECT_EQ(visit(), "-:- a:1 -:- b:- ");
}

TEST_F(IniStore, deletingTheVisitedEntryKeepsTheCursor)
{
    const Store store = loaded("a=1\nb=2\nc=3\n");
    const char *key = nullptr;
    ASSERT_EQ(ini_next_entry(store.get(), &key, nullptr), 0);
    ASSERT_EQ(ini_next_entry(store.get(), &key, nullptr), 0);
    ASSERT_EQ(ini_delete_key(store.get(), "b"), 0);
    ASSERT_EQ(ini_next_entry(store.get(), &key, nullptr), 0);
    EXPECT_STREQ(key, "c");
    EXPECT_EQ(ini_next_entry(store.get(), &key, nullptr), -1);
}

TEST_F(IniStore, nextSectionWalksInFileOrder)
{
    const Store store = loaded("[b]\n[a]\n[b]\n");
    std::string seen;
    const char *name = nullptr;
    while (ini_next_section(store.get(), &name) == 0)
        seen += name;
    EXPECT_EQ(seen, "bab");
}

TEST_F(IniStore, renamedKeyKeepsItsPlaceAndItsValue)
{
    const Store store = loaded("a=1\nb=2\n");
    ASSERT_EQ(ini_rename_key(store.get(), "a", "z"), 0);
    EXPECT_EQ(saved(store), "z=1\nb=2\n");
    ASSERT_EQ(ini_rename_key(store.get(), "z", ""), 0);
    ASSERT_EQ(ini_rename_key(store.get(), "b", nullptr), 0);
    EXPECT_EQ(saved(store), "\n\n");
}

TEST_F(IniStore, commentOfAPairFollowsItAfterThreeSpaces)
{
    const Store store = loaded("k=v\n");
    store->sections.entries.next->comment = strdup("# why");
    EXPECT_EQ(saved(store), "k=v   # why\n");
}

TEST_F(IniStore, manySectionsAreFoundInTheirPlace)
{
    const Store store = inMemory();
    for (int i = 0; i < 20000; ++i) {
        ASSERT_EQ(ini_use_section(store.get(), std::to_string(i).c_str()), 0);
        ASSERT_EQ(ini_set(store.get(), "k", std::to_string(i).c_str()), 0);
    }
    for (int i = 0; i < 20000; i += 2)
        ASSERT_EQ(ini_delete_section(store.get(), std::to_string(i).c_str()), 0);
    for (int i = 0; i < 20000; ++i) {
        ASSERT_EQ(ini_select_section(store.get(), std::to_string(i).c_str()), i % 2 ? 0 : -1);
        if (i % 2)
            ASSERT_EQ(ini_get_string(store.get(), "k"), std::to_string(i));
    }
}

TEST_F(IniStore, closingNothingIsAllowed)
{
    EXPECT_EQ(ini_close(nullptr), 0);
}
