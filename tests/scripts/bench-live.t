# SPDX-License-Identifier: Apache-2.0
# bench/live.pl: what its figures are taken from. The programs that it measures are stand-ins here.
use strict;
use warnings;
use Cwd 'abs_path';
use File::Path 'make_path';
use File::Temp 'tempdir';
use FindBin;
use lib $FindBin::Bin;
use LiveTest qw(shader);
use ScriptTest qw(get put run);
use Test::More;

my $source = abs_path("$FindBin::Bin/../..");
my $dir = abs_path(tempdir(CLEANUP => 1));
make_path("$dir/bin", "$dir/libexec/tavrin");

put("$dir/code", shader("tvColor = vec4(0.220000, 0.500000, 1.0, 1.0);"));
put("$dir/bin/tavrin-batch", <<'END_PROGRAM' =~ s/DIR/$dir/gr);
#!/usr/bin/perl
my %after = map { $ARGV[$_] => $ARGV[$_ + 1] } 0 .. $#ARGV;
my $kept = $after{'--keep-work'};
mkdir $kept or exit 1;
system 'cp', 'DIR/code', "$kept/codegenfile";
open my $file, '>', "$kept/render_options" or exit 1;
print $file "setenv MRAY_TIMES \"1\"\n" if grep { $_ eq 'MRAY_TIMES=1' } @ARGV;
END_PROGRAM

# Knows the sources that it was given; FORGETS makes it compile each of them.
put("$dir/libexec/tavrin/mray-render", <<'END_PROGRAM' =~ s/DIR/$dir/gr);
#!/usr/bin/perl
$| = 1;
open my $notes, '>>', 'DIR/notes' or die;
print $notes $ENV{MESA_SHADER_CACHE_DISABLE} // 'unset', "\n";
close $notes;
my %known;
print "ready\n";
while (<STDIN>) {
	my (undef, $id, @words) = split;
	open my $in, '<', $words[-2] or next;
	my $text = do { local $/; <$in> };
	print "program $id ", $known{$text}++ && !$ENV{FORGETS} ? 'kept' : 'new', "\n";
	print "times $id compile 1.5, draw 2.5 ms\npicture $id\n";
}
END_PROGRAM
chmod 0755, "$dir/bin/tavrin-batch", "$dir/libexec/tavrin/mray-render";

delete $ENV{MESA_SHADER_CACHE_DISABLE};
my ($status, $out, $err) = run($^X, "$source/bench/live.pl", "$dir/bin/tavrin-batch");
is($status, 0, 'the figures are taken') or diag $err;
for my $what ('value', 'network', 'floor value', 'floor network') {
	like($out, qr/^$what +first +[\d.]+  fine +[\d.]+  worst of ten +[\d.]+ +[\d.]+   of it compile 1\.5, draw 2\.5, filter [\d.]+$/m, $what);
}
like($out, qr/^$_ +[\d.]+ pictures a second$/m, $_) for 'drag', 'floor drag';
is(get("$dir/notes"), "true\n", 'by one renderer, whose driver keeps no compiled shaders');

$ENV{FORGETS} = 1;
($status, $out, $err) = run($^X, "$source/bench/live.pl", "$dir/bin/tavrin-batch");
isnt($status, 0, 'a value that compiles something');
like($err, qr/^value: the program is new$/m, 'makes no figure');

done_testing;
