#!/usr/bin/perl
# SPDX-License-Identifier: Apache-2.0
#
# Kills tavrin-batch while it saves, again and again, and looks at the document each
# time: it is whole, as one save or as another has written it. Needs TAVRIN_BATCH,
# the program to be tried. For more than a first impression:
#
#     TAVRIN_BATCH=build/release/bin/tavrin-batch prove tests/scripts/killed-saves.t :: 1000

use strict;
use warnings;
use File::Temp qw(tempdir);
use FindBin qw($Bin);
use POSIX ();
use Test::More;
use Time::HiRes qw(sleep time);

use constant { SAVES => 400, BOXES => 300 };

my $kills = @ARGV ? $ARGV[0] : 100;
my $program = $ENV{TAVRIN_BATCH} or plan skip_all => 'TAVRIN_BATCH names no program';
my $dir = tempdir(CLEANUP => 1);
mkdir "$dir/$_" or die "$dir/$_: $!\n" for qw(tmp home documents documents/two);
%ENV = (PATH => $ENV{PATH}, HOME => "$dir/home", LANG => 'C', TAVRN_DIR => "$Bin/../../installation",
	TAVRN_TMPDIR => "$dir/tmp", SOURCE_DATE_EPOCH => 1000000000,
	map { $_ => $ENV{$_} } grep { /^(ASAN|UBSAN)_OPTIONS$/ } keys %ENV);

sub slurp { open my $f, '<:raw', $_[0] or return undef; local $/; my $t = <$f>; return $t // '' }
sub spew { my ($path, $text) = @_; open my $f, '>:raw', $path or die "$path: $!\n"; print $f $text; close $f or die }
sub names { opendir my $d, $_[0] or die "$_[0]: $!\n"; return sort grep { !/^\.\.?$/ } readdir $d }

# A process that does this to its end, unless it is killed.
sub start {
	my (@words) = @_;
	my $child = fork // die "fork: $!\n";
	return $child if $child;
	open STDIN, '<', '/dev/null';
	open STDOUT, '>', "$dir/out";
	open STDERR, '>', "$dir/err";
	exec $program, @words or POSIX::_exit(127);
}

my $network = "tavrn-renderer mray\nopdesk {\n"
	. join('', map { "opbox { filename Noise wid $_ xypos $_ 0 }\n" } 1 .. BOXES) . "}\n";
spew("$dir/network.tvn", $network);

# Each version is what one plain run writes.
my @options = map { ['--set', "MRAY_EXPOSURE=$_"] } 1, 2;
my %whole;
for my $version (0, 1) {
	my $path = "$dir/version$version.tvn";
	waitpid(start("$dir/network.tvn", @{ $options[$version] }, '--save', $path), 0);
	$whole{ slurp($path) // BAIL_OUT("no document was written: " . slurp("$dir/err")) } = $version;
}
is(scalar keys %whole, 2, 'two versions can be told apart');

# $links: the document has another name, too, so that it is written in place.
sub try {
	my ($title, $folder, $links, $count) = @_;
	my $document = "$folder/doc.tvn";
	spew($document, slurp("$dir/version0.tvn"));
	link $document, "$dir/other-name" or die "$!\n" if $links;
	my @saves = map { (@{ $options[$_ % 2] }, '--save', $document) } 1 .. SAVES;
	my ($broken, $killed, $between, $rescued) = (0, 0, 0, 0);
	my $length;
	for my $round (1 .. $count) {
		my $before = slurp($document);
		my $child = start("$dir/network.tvn", @saves);
		# From the first save on, whose end is seen by the file, to somewhere on the way.
		my $begun = time;
		my $stamp = join ' ', (stat $document)[1, 7, 9];
		sleep 0.001 while join(' ', (stat $document)[1, 7, 9]) eq $stamp && slurp($document) eq $before
			&& waitpid($child, POSIX::WNOHANG()) == 0;
		$length //= 2 * (time - $begun);
		sleep(rand $length);
		kill 'KILL', $child;
		$killed++ if waitpid($child, 0) == $child && ($? & 127) == 9;
		my $text = slurp($document);
		if (!exists $whole{$text}) {
			# The copy that was made before holds all of it.
			my @copies = grep { exists $whole{ slurp($_) } } glob "$dir/home/.local/state/tavrin/recovery/*.tvn";
			if ($links && @copies) { $rescued++ } else { $broken++ }
			spew($document, slurp("$dir/version0.tvn")) if !$links;
			if ($links) { open my $f, '+<:raw', $document; truncate $f, 0; print $f slurp("$dir/version0.tvn") }
		}
		$between++ if (my @names = names($folder)) > 1;
	}
	is($broken, 0, "$title: whole after each of $killed kills");
	cmp_ok($killed, '>', 0, "$title: some came in time");
	note("$between left something beside it, $rescued were rescued by the copy");
	waitpid(start($document, '--save', $document), 0);
	is($?, 0, "$title: it opens and saves") or diag(slurp("$dir/err"));
	is_deeply([names($folder)], ['doc.tvn'], "$title: nothing is left beside it");
	is_deeply([names("$dir/tmp")], [], "$title: no work directory is left");
	is((stat $document)[3], $links ? 2 : 1, "$title: its names are as they were");
}

try('by another file', "$dir/documents/two", 0, $kills);
mkdir "$dir/documents/linked" or die "$!\n";
try('in place', "$dir/documents/linked", 1, $kills > 10 ? int($kills / 5) : $kills);
done_testing();
