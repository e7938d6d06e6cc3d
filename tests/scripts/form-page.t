# SPDX-License-Identifier: Apache-2.0
# The page of the manual about forms: its examples are read without a word, each has its picture, and it tells every
# kind and every property that the reader knows.
use strict;
use warnings;
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use ScriptTest qw(put get run);
use Test::More;

my $batch = $ENV{TAVRIN_BATCH};
plan skip_all => 'TAVRIN_BATCH does not name tavrin-batch' if !defined $batch;
my $root = "$FindBin::Bin/../..";
my $dir = tempdir(CLEANUP => 1);
delete @ENV{grep { /^TAVRN_/ } keys %ENV};
mkdir "$dir/$_" or die for 'lib', 'lib/menu';
@ENV{qw(TAVRN_DIR TAVRN_LIB)} = ($dir, "$dir/lib");
my $page = get("$root/docs/forms.md");

# ---------------------------------------------------------------- examples

my @examples = $page =~ /^```roe (\w+)\n(.*?)^```\n\n!\[[^\]]+\]\(pictures\/forms\/(\w+)\.png\)$/msg;
is(@examples / 3, () = $page =~ /^```roe/mg, 'each example has a picture below it');
while (my ($name, $text, $picture) = splice @examples, 0, 3) {
	is($picture, $name, "that of $name");
	put("$dir/lib/tavrn.def", $text);
	my ($status, $out, $err) = run($batch, '--save', "$dir/new.tvn");
	is_deeply([$status, $err], [0, ''], "the example $name is read without a word");
	my @options = $text =~ /^\s*[xyz]?envname (\w+)$/mg;
	my $saved = get("$dir/new.tvn");
	like($saved, qr/^    setenv $_ /m, "its option $_ has a value") for @options;
}
for my $picture ($page =~ /\((pictures\/forms\/\w+\.png)\)/g) {
	like(get("$root/docs/$picture") // '', qr/\A\x89PNG\r\n/, "$picture is there");
}

# ---------------------------------------------------------------- the language

my $reader = get("$root/src/forms/FormReader.cpp");
my @kinds = $reader =~ /if \(kind == "(\w+)"\)/g;
cmp_ok(scalar @kinds, '>', 5, 'the reader knows kinds');
like($page, qr/^### $_\n\n```roe $_$/m, "the kind $_ has a chapter and an example") for @kinds;
my %words = map { $_ => 1 } ($reader . get("$root/src/forms/FormProperties.cpp")) =~ /\b(?:key|name) == "(\w{2,})"/g;
cmp_ok(scalar keys %words, '>', 20, 'the reader knows properties');
like($page, qr/`[xyz]?$_\b/, "the property $_ is told") for sort keys %words;
for my $action (get("$root/src/app/Actions.cpp") =~ /(?:message|argument|actionmsg|kind) == "([\w-]+)"/g) {
	like($page, qr/`\Q$action\E`/, "the action $action is told");
}

done_testing();
