# SPDX-License-Identifier: Apache-2.0
# bench/pipeline.pl: what its figures are taken from. The programs that it measures are stand-ins here.
use strict;
use warnings;
use Cwd 'abs_path';
use File::Path 'make_path';
use File::Temp 'tempdir';
use FindBin;
use Test::More;

my $source = abs_path("$FindBin::Bin/../..");
my $dir = abs_path(tempdir(CLEANUP => 1));
make_path("$dir/bin", "$dir/bench", "$dir/tools");

sub program {
	my ($path, $text) = @_;
	open my $file, '>', "$dir/$path" or die "$path: $!";
	print $file $text;
	close $file;
	chmod 0755, "$dir/$path";
}

# Makes the files that are asked for, and notes what a render is given.
program('bin/tavrin-batch', <<'END_PROGRAM');
#!/usr/bin/perl
my %after = map { $ARGV[$_] => $ARGV[$_ + 1] } 0 .. $#ARGV;
sub put { open my $file, '>', $_[0] or die "$_[0]: $!"; print $file $_[1]; close $file; }
put($after{'--save'}, "    opbox\n" x 3) if $after{'--save'};
if (my $kept = $after{'--keep-work'}) { mkdir $kept; put("$kept/marble", "void main() {}\n"); }
exit 0 if !exists $after{'--render'};
open my $notes, '>>', $ENV{NOTES} or die;
print $notes $ENV{MESA_SHADER_CACHE_DISABLE} // 'unset', "\n";
END_PROGRAM
program('bench/bench_Pairs', "#!/bin/sh\necho 2.5\n");
program('tools/glslangValidator', "#!/bin/sh\n");

$ENV{PATH} = "$dir/tools:$ENV{PATH}";
$ENV{NOTES} = "$dir/notes";
delete $ENV{MESA_SHADER_CACHE_DISABLE};
my $said = `$^X $source/bench/pipeline.pl $dir/bin/tavrin-batch`;
is($?, 0, 'the figures are taken');
like($said, qr{^open     3 boxes .* floor of that \(bare pairs\) 2\.5 ms}m, 'of opening');
like($said, qr{^render   .* ms .*\(the driver's cache of compiled shaders is off\)$}m, 'and of a render, with what holds for it');
open my $notes, '<', "$dir/notes" or die;
my %seen = map { $_ => 1 } <$notes>;
is_deeply([keys %seen], ["true\n"], 'so each render compiles its shader');

done_testing;
