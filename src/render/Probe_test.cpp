// SPDX-License-Identifier: Apache-2.0
// What is generated for an output that is probed.
#include "render/Probe.h"

#include "render/ProbeTest.h"

namespace tavrin {
namespace {

using test::BoxAt;
using test::Wire;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class ProbeCode : public test::ProbeTest {};

TEST_F(ProbeCode, TheOutputGoesThroughTheNetworkAndOnlyWhatFeedsItIsGenerated) {
    LoadChain();
    EXPECT_THAT(CodeOf(Output(1)), ElementsAre("float Source_1_out", "Source_1_out = 0.25;",
                                               "show(Source_1_out, 9, float, connectednoarg);"));
    EXPECT_THAT(CodeOf(Output(2, 1)),
                ElementsAre("float Source_1_out", "float Pass_2_o", "float Pass_2_p", "Source_1_out = 0.25;",
                            "Pass_2_o = Source_1_out; Pass_2_p = -Source_1_out;",
                            "show(Pass_2_p, 9, float, connectednoarg);"));
    EXPECT_THAT(Alerts(), IsEmpty());
    EXPECT_EQ(host.Sink().log, "");
}

TEST_F(ProbeCode, NothingOfTheDocumentChangesAndNobodyHearsOfIt) {
    LoadChain();
    document.KeepHistory();
    int heard = 0;
    const auto changes = document.edits.Observe([&heard](const Change&) { ++heard; });
    const auto reorders = document.afterReorder.Add([&heard] { ++heard; });
    EXPECT_EQ(probe.WhyNot(Output(1)), "");  // the networks are read now
    const std::string before = Everything();
    for (COpButton* output : {&Output(1), &Output(2, 0), &Output(2, 1)}) {
        EXPECT_THAT(CodeOf(*output), Not(ElementsAre("nothing")));
        EXPECT_EQ(Everything(), before);
        EXPECT_EQ(output->NamedBy().Size(), output == &Output(2, 1) ? 0U : 1U);
    }
    probe.End();
    EXPECT_EQ(Everything(), before);
    EXPECT_EQ(heard, 0);
    EXPECT_FALSE(document.IsModified());
}

TEST_F(ProbeCode, TheNetworkMayGoWhileTheDocumentStays) {
    LoadChain();
    const std::string before = test::PrintNetwork(document);
    {
        Probe other(document, host);
        EXPECT_TRUE(other.Show(Output(1)));
        EXPECT_TRUE(other.Generate("demo", codeGen).has_value());
    }
    EXPECT_EQ(test::PrintNetwork(document), before);
}

TEST_F(ProbeCode, ItsBoxesHaveNumbersThatNoBoxOfTheDocumentHas) {
    codeGen.m_lineComment = "//";
    LoadDesk("opbox { filename Source wid 1 } opbox { filename Show wid 7 }");
    EXPECT_THAT(CodeOf(Output(1)), AllOf(Contains("// Show_1000000"), Not(Contains("// Show_1"))));
    Box(7).wid = 1000000;
    EXPECT_THAT(Code(), Contains("// Show_1000001"));
}

TEST_F(ProbeCode, TheShaderStaysTheSameWhateverElseComesToTheDesk) {
    LoadChain();
    const auto alone = CodeOf(Output(1));
    Add(test::MakeLink("Link", 40));
    EXPECT_EQ(Code(), alone);
}

TEST_F(ProbeCode, TheShadersNameHelpAndTemplateAreThoseOfTheDocument) {
    LoadChain();
    codeGen.m_openComment = "/*";
    codeGen.m_closeComment = "*/";
    codeGen.AddLine("main-open", "append", "surface _SHADERNAME_");
    EXPECT_THAT(CodeOf(Output(1)), AllOf(Contains("A plastic."), Contains("surface demo")));
}

TEST_F(ProbeCode, ArgumentsAreThoseOfTheBoxesThatAreGenerated) {
    LoadDesk("opbox { filename Source wid 1\n" +
             Button("input value value", "float", "arg 1 argname \"depth\" float 0.5 0 1 0") +
             "}\nopbox { filename Sink wid 3\n" +
             Button("input shade shade", "float", "arg 1 argname \"shade\" float 0.5 0 1 0") + "}\n");
    EXPECT_THAT(CodeOf(Output(1)), Contains("Source_1_out = depth;"));
    EXPECT_THAT(argInfo, AllOf(HasSubstr("Help\n{\n>A plastic.\n}\n"), HasSubstr("ArgName depth\n"),
                               Not(HasSubstr("ArgName shade")), Not(HasSubstr("ArgName probe"))));
}

TEST_F(ProbeCode, AnOutputThatIsTiedBackStandsForWhatItStandsFor) {
    LoadDesk(
        "opbox { filename Source wid 1 } opbox { filename Relay wid 2 } opbox { filename Relay wid 3 }\n"
        "opconnects { opbox:S,1,out,0 -> opbox:R,2,i,0 }");
    EXPECT_THAT(CodeOf(Output(2)), Contains("show(Source_1_out, 9, float, connectednoarg);"));
    EXPECT_THAT(CodeOf(Output(3)), ElementsAre("show(0.25, 9, float, connectednoarg);"));
}

TEST_F(ProbeCode, AFixedValueIsExpandedByTheVariablesOfItsBox) {
    LoadDesk("opbox { filename Fixed wid 5 }");
    EXPECT_THAT(CodeOf(Output(5)), ElementsAre("show(warp(i, 5), 9, float, connectednoarg);"));
    EXPECT_EQ(document.preparedVariables.Size(), 0U) << "what names are shown with is the document's own";
}

TEST_F(ProbeCode, InputsThatTheUserHasMultipliedAreJoined) {
    LoadDesk("opbox { filename Source wid 1 } opbox { filename Sum wid 2\n" +
             Button("vinput v v1", "float", "") + Button("vinput v v2", "float", "") +
             Button("vinput v v3", "float", "float 0.5 0 1 0") +
             "}\nopconnects { opbox:S,1,out,0 -> opbox:S,2,v,1 }");
    EXPECT_THAT(CodeOf(Output(2)), Contains("Sum_2_o = 0.25 + Source_1_out + 0.5;"));
}

TEST_F(ProbeCode, APlaceholderAboveItIsLeftOutWithItsReason) {
    site.settings.Store("document.placeholders", "1");
    LoadDesk("opbox { filename Gone wid 1\n" + Button("output o o", "float", "") +
             "}\nopbox { filename Lost wid 4 }\nopbox { filename Pass wid 2 }\n"
             "opconnects { opbox:G,1,o,0 -> opbox:P,2,i,0 }");
    EXPECT_THAT(CodeOf(Output(2)), Contains("Pass_2_o = 0.25; Pass_2_p = -0.25;"));
    EXPECT_EQ(
        host.Sink().log,
        "WARNING: Gone_1 is a placeholder, so no code is generated for it: Gone: unknown operator name\r\n")
        << "of those that feed it alone";
}

TEST_F(ProbeCode, ACircleThatDoesNotFeedItIsNoMatter) {
    LoadDesk("opbox { filename Source wid 1 } opbox { filename Pass wid 2 } opbox { filename Pass wid 3 }");
    Wire(Box(2), 0, Box(3), 0);
    Wire(Box(3), 0, Box(2), 0);
    EXPECT_THAT(CodeOf(Output(1)), Contains("Source_1_out = 0.25;"));
    EXPECT_EQ(host.Sink().log, "");
    Wire(Box(1), 0, Box(2), 0);  // which cuts it
    EXPECT_THAT(CodeOf(Output(3)), Contains("Pass_3_o = Pass_2_o; Pass_3_p = -Pass_2_o;"));
}

TEST_F(ProbeCode, AShaderIsTwiceTheSame) {
    LoadChain();
    const auto once = CodeOf(Output(2));
    EXPECT_EQ(Code(), once);
    EXPECT_EQ(CodeOf(Output(2)), once);
}

TEST_F(ProbeCode, ANetworkOfSeveralBoxesComesWhole) {
    SetNetwork("chain.tvn", "opdesk { opbox { filename Pass wid 1\n" +
                                Button("input i i", "float", "arg 1 argname \"probe\"") +
                                Button("output o o", "float", "") + Button("output p p", "float", "") +
                                "} opbox { filename Sink wid 2 }\n"
                                "opconnects { opbox:P,1,p,1 -> opbox:S,2,shade,0 } }");
    LoadDesk("opbox { filename Source wid 5 }");
    EXPECT_THAT(
        CodeOf(Output(5)),
        ElementsAre("float Source_5_out", "float Pass_1000000_o", "float Pass_1000000_p",
                    "Source_5_out = 0.25;", "Pass_1000000_o = Source_5_out; Pass_1000000_p = -Source_5_out;",
                    "sink(Pass_1000000_p);"));
}

TEST_F(ProbeCode, NothingIsGeneratedWhileNothingIsShown) {
    LoadChain();
    EXPECT_THAT(Code(), ElementsAre("nothing"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

// By its type.

class ProbeTypes : public test::ProbeTest {
  protected:
    ProbeTypes() { LoadDesk("opbox { filename Source wid 1 }"); }
    // How the network is called by which the source is shown with a cast.
    std::vector<std::string> ShownAs(const std::string& type) {
        COpButton& output = Output(1);
        output.SetCast(static_cast<size_t>(output.FindCast(type)));
        return CodeOf(output);
    }
    static std::string Named(const std::string& value, const std::string& cast) {
        std::string text = Show(cast);
        return text.replace(text.find("float 9 "), 8, "float " + value + " ");
    }
};

TEST_F(ProbeTypes, TheNetworkThatWasSavedWithTheTypeComesFirst) {
    AddNetwork("rgb.tvn", Named("3", "rgb"));
    EXPECT_THAT(ShownAs("float"), Contains("show(Source_1_out, 9, float, connectednoarg);"));
    EXPECT_THAT(ShownAs("rgb"), Contains("show(Source_1_out, 3, rgb, connectednoarg);"));
    EXPECT_THAT(ShownAs("float"), Contains("show(Source_1_out, 9, float, connectednoarg);"));
}

TEST_F(ProbeTypes, ElseOneThatHasTheTypeAmongItsCastsWhichIsChosen) {
    EXPECT_THAT(ShownAs("rgb"), Contains("show(Source_1_out, 9, rgb, connectednoarg);"));
    EXPECT_THAT(ShownAs("float"), Contains("show(Source_1_out, 9, float, connectednoarg);"));
}

TEST_F(ProbeTypes, OfTwoTheOneThatIsNamedLast) {
    AddNetwork("other.tvn", Named("4", "float"));
    EXPECT_THAT(ShownAs("float"), Contains("show(Source_1_out, 4, float, connectednoarg);"));
}

TEST_F(ProbeTypes, ATypeOfTheLibrarysOwnIsOneLikeAnother) {
    host.AddOperator("Matrix", "output o { generic:matrix out }\n");
    host.AddOperator("Vector", "output o { generic:vec9 out }\n");
    LoadDesk("opbox { filename Matrix wid 1 } opbox { filename Vector wid 2 }");
    EXPECT_THAT(CodeOf(Output(1)), Contains("show(Matrix_1_o, 9, matrix, connectednoarg);"));
    EXPECT_EQ(RefusalOf(Output(2)),
              "Vector_2 o cannot be shown: no probe network of the library mini takes the type vec9");
}

TEST_F(ProbeTypes, ATypeThatNoNetworkTakesIsRefusedAndWhatWasShownStays) {
    SetNetwork("plain.tvn", "opdesk { opbox { filename Plain wid 1 } }");
    LoadDesk("opbox { filename Source wid 1 } opbox { filename Pass wid 2 }");
    EXPECT_THAT(CodeOf(Output(2)), Contains("plain(Pass_2_o);"));
    Output(1).SetCast(1);
    EXPECT_EQ(RefusalOf(Output(1)),
              "Source_1 out cannot be shown: no probe network of the library mini takes the type rgb");
    EXPECT_EQ(probe.Name(), "Pass_2 o");
}

TEST_F(ProbeTypes, AStringHasNoPictureWhateverTheNetworkSays) {
    MakeString(Output(1));
    EXPECT_EQ(RefusalOf(Output(1)),
              "Source_1 out cannot be shown: a string has no picture; choose an output of another type");
    EXPECT_EQ(probe.Output(), nullptr);
}

TEST_F(ProbeTypes, AnOutputWithoutATypeIsRefused) {
    Output(1).values.clear();
    EXPECT_EQ(RefusalOf(Output(1)),
              "Source_1 out cannot be shown: its operator gives it no type that could be seen; choose "
              "another output");
}

// What of the box is in the way.

class ProbeRefusals : public test::ProbeTest {};

TEST_F(ProbeRefusals, APlaceholdersOutputTellsItsReason) {
    site.settings.Store("document.placeholders", "1");
    LoadDesk("opbox { filename Gone wid 1\n" + Button("output o o", "float", "") + "}");
    EXPECT_EQ(RefusalOf(Output(1)),
              "Gone_1 o cannot be shown: its box is a placeholder, of which no code is made: Gone: unknown "
              "operator name");
}

TEST_F(ProbeRefusals, AStrayButtonIsNoOutputOfItsOperator) {
    site.settings.Store("document.placeholders", "1");
    LoadDesk("opbox { filename Sink wid 1\n" + Button("output extra extra", "float", "") + "}");
    EXPECT_EQ(
        RefusalOf(Output(1)),
        "Sink_1 extra cannot be shown: its operator has no such output any more; delete its box and add a "
        "new one");
}

TEST_F(ProbeRefusals, AnInputIsNoOutput) {
    LoadChain();
    EXPECT_EQ(RefusalOf(*Box(2).inputs[0]), "Pass_2 i cannot be shown: it is an input; choose an output");
}

TEST_F(ProbeRefusals, ABoxInACircleSaysSo) {
    LoadDesk("opbox { filename Pass wid 1 } opbox { filename Pass wid 2 } opbox { filename Pass wid 3 }");
    Wire(Box(1), 0, Box(2), 0);
    Wire(Box(2), 0, Box(1), 0);
    Wire(Box(2), 1, Box(3), 0);
    for (const int wid : {1, 2}) {
        EXPECT_THAT(RefusalOf(Output(wid, 1)),
                    HasSubstr(" p cannot be shown: its box stands in a circle of wires; cut one of them"));
    }
    EXPECT_TRUE(probe.Show(Output(3))) << "a circle above is what it is to a render";
}

TEST_F(ProbeRefusals, ACopyWithoutTemplatesMakesNoCode) {
    LoadChain();
    COpBox& copy = Add(std::make_unique<COpBox>(Box(1)));
    EXPECT_THAT(RefusalOf(*copy.outputs[0]), HasSubstr("its box is a copy without templates"));
}

// The library.

class ProbeLibrary : public test::ProbeTest {
  protected:
    ProbeLibrary() { LoadDesk("opbox { filename Source wid 1 }"); }
    std::string RefusalBy(const std::string& network) {
        SetNetwork("this.tvn", network);
        return RefusalOf(Output(1));
    }
    static std::string Start() {
        return "Source_1 out cannot be shown: no probe network of the library mini takes the type float; ";
    }
};

TEST_F(ProbeLibrary, OneThatNamesNoNetworkIsToldHow) {
    site.probes.clear();
    EXPECT_EQ(RefusalOf(Output(1)),
              "Source_1 out cannot be shown: the library mini names no network that shows outputs; a line "
              "\"probe FILE\" of its tavrn.def does");
}

TEST_F(ProbeLibrary, TheLinesOfAnotherLibraryDoNotCount) {
    site.settingsLibrary = "other";
    EXPECT_THAT(RefusalOf(Output(1)), HasSubstr("the library mini names no network that shows outputs"));
}

TEST_F(ProbeLibrary, ANetworkThatCannotBeUsedIsNamedWithWhatIsWrong) {
    const std::string path = NetworkPath("this.tvn");
    EXPECT_EQ(RefusalBy(""), Start() + path + " holds no network");
    EXPECT_EQ(RefusalBy("opdesk { }"), Start() + path + " holds no network");
    EXPECT_EQ(RefusalBy("opdesk {\nopbox { filename None wid 1 } }"),
              Start() + "None: unknown operator name");
    EXPECT_EQ(RefusalBy("opdesk {\nopbox { wid } }"), Start() + path + " near line 2: unexpected input");
    site.settings.Store("document.placeholders", "1");
    EXPECT_EQ(RefusalBy("opdesk {\nopbox { filename None wid 1 } }  "),
              Start() + path + ": None_1 has no operator: None: unknown operator name");
    site.probes = {"probe/never.tvn"};
    EXPECT_EQ(RefusalOf(Output(1)), Start() + "unable to open " + NetworkPath("never.tvn") +
                                        " for reading: No such file or directory");
}

TEST_F(ProbeLibrary, AnAbsolutePathIsTakenAsItStands) {
    site.probes = {host.Directory().Write("elsewhere.tvn", Show("float"))};
    EXPECT_THAT(CodeOf(Output(1)), Contains("show(Source_1_out, 9, float, connectednoarg);"));
}

TEST_F(ProbeLibrary, TheOpenInputIsTheArgumentOfThatNameOrTheOnlyOneThatIsOpen) {
    SetNetwork("this.tvn", "opdesk { opbox { filename Plain wid 1 } }");
    EXPECT_THAT(CodeOf(Output(1)), Contains("plain(Source_1_out);"));
    const std::string several = NetworkPath("this.tvn") +
                                ": more than one input is open to take an output; make the one that shall an "
                                "argument, and name it \"probe\"";
    EXPECT_EQ(RefusalBy(Show("float", "probes")), Start() + several);
    EXPECT_EQ(RefusalBy("opdesk { opbox { filename Plain wid 1\n" +
                        Button("input seen seen", "float", "arg 1 argname \"probe\"") +
                        "} opbox { filename Plain wid 2\n" +
                        Button("input seen seen", "float", "arg 1 argname \"probe\"") + "} }"),
              Start() + several);
    SetNetwork("this.tvn",
               "opdesk { opbox { filename Source wid 1 } opbox { filename Plain wid 2 }\n"
               "opconnects { opbox:S,1,out,0 -> opbox:P,2,seen,0 } }");
    EXPECT_THAT(CodeOf(Output(1)), Contains("Source_1000000_out = Source_1_out;"))
        << "an input that has a wire is none";
}

TEST_F(ProbeLibrary, WithoutAnyOpenInputItSaysSo) {
    host.AddOperator("Closed", "input seen { wwms.disableconnectflag 1 float { 0 0 1 0 %g } }\n");
    EXPECT_EQ(RefusalBy("opdesk { opbox { filename Closed wid 1 } }"),
              Start() + NetworkPath("this.tvn") +
                  ": no input is open to take an output; make the one that shall an argument, and name it "
                  "\"probe\"");
}

TEST_F(ProbeLibrary, OneNetworkThatIsBrokenLeavesTheOthersAlone) {
    AddNetwork("broken.tvn", "nothing of that kind");
    EXPECT_THAT(CodeOf(Output(1)), Contains("show(Source_1_out, 9, float, connectednoarg);"));
    EXPECT_THAT(Alerts(), IsEmpty());
}

TEST_F(ProbeLibrary, ANetworkIsReadAgainOnceItsFileIsAnother) {
    EXPECT_THAT(CodeOf(Output(1)), Contains("show(Source_1_out, 9, float, connectednoarg);"));
    const size_t boxes = COpBox::LiveCount();
    Code();
    EXPECT_EQ(COpBox::LiveCount(), boxes);
    host.Directory().Write("installation/mini/probe/float.tvn", "opdesk { opbox { filename Plain wid 1 } } ");
    EXPECT_THAT(Code(), Contains("plain(Source_1_out);"));
}

TEST_F(ProbeLibrary, AndOnceTheOperatorsWereScannedAgain) {
    EXPECT_THAT(CodeOf(Output(1)), Contains("show(Source_1_out, 9, float, connectednoarg);"));
    host.Directory().Write("installation/mini/menu/1006.Show",
                           "input other { float { 0 0 1 0 %g } } input seen { float { 0 0 1 0 \"%g\" } } "
                           "codegen.main-body append\nnew(seen);\n<<EOT>>\n");
    EXPECT_THAT(Code(), Contains("show(Source_1_out, 9, float, connectednoarg);")) << "nobody has said so";
    host.AddOperator("Another", "");
    EXPECT_THAT(Code(), Contains("new(Source_1_out);"));
}

// By words.

class ProbeFind : public test::ProbeTest {
  protected:
    std::string ErrorOf(const std::string& words) {
        std::string error;
        EXPECT_EQ(Probe::Find(document, words, error), nullptr);
        return error;
    }
};

TEST_F(ProbeFind, ABoxByTitleAndNumberAndAnOutputByName) {
    LoadChain();
    std::string error;
    EXPECT_EQ(Probe::Find(document, "Pass_2.p", error), &Output(2, 1));
    EXPECT_EQ(Probe::Find(document, "Source_1.out", error), &Output(1));
    EXPECT_EQ(error, "");
}

TEST_F(ProbeFind, NamesMayHoldDots) {
    Add(test::MakeBox("a.b", "output c.d { float out }", 1));
    Add(test::MakeBox("a", "output b { float out }", 1));
    std::string error;
    EXPECT_EQ(Probe::Find(document, "a.b_1.c.d", error), BoxAt(document, 0).outputs[0].get());
    EXPECT_EQ(Probe::Find(document, "a_1.b", error), BoxAt(document, 1).outputs[0].get());
}

TEST_F(ProbeFind, WhatIsNotThereIsToldWithWhatComesNearest) {
    EXPECT_EQ(ErrorOf("Source_1.out"), "the desk is empty");
    LoadChain();
    EXPECT_EQ(ErrorOf("Sorce_1.out"), "there is no box Sorce_1; there is Source_1");
    EXPECT_EQ(ErrorOf("Elsewhere_1.out"), "there is no box Elsewhere_1");
    EXPECT_EQ(ErrorOf("Source_1.ou"), "Source_1 has no output ou; there is out");
    EXPECT_EQ(ErrorOf("Pass_2.relief"), "Pass_2 has no output relief; there is o or p");
    EXPECT_EQ(ErrorOf("Sink_3.shade"), "Sink_3 has no outputs");
}

}  // namespace
}  // namespace tavrin
