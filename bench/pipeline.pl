#!/usr/bin/perl
# SPDX-License-Identifier: Apache-2.0
# Whole-process figures: perl bench/pipeline.pl TAVRIN-BATCH. Medians of several runs, in milliseconds.
#   version   the start and end of the program
#   open      a document of many boxes of one operator, with a single run of the preprocessor; the old way, a
#             run for each box; and against that as many bare pairs of redirect.pl and spp started the same way
#             (bench_Pairs, beside the program). bench_Opening has documents of all operators
#   render    the marble example at 320x240, from the start of the program to the finished PNG, and the
#             share of each step: that of a step is the time to it less the time to the one before. The
#             driver keeps compiled shaders on the disk; with them a repeated render would measure only that,
#             while what a user renders is new. So that cache is off.
use strict;
use warnings;
use Cwd qw(abs_path);
use File::Basename qw(dirname);
use File::Temp qw(tempdir);
use POSIX ();
use Time::HiRes qw(time);

my $batch = abs_path($ARGV[0] // '') or die "usage: pipeline.pl TAVRIN-BATCH\n";
my $source = abs_path(dirname(__FILE__) . '/..');
my $work = tempdir(CLEANUP => 1);
my $runs = 9;
my $marble = "$source/examples/marble.tvn";
my $library = "$source/installation/mray";
$ENV{TAVRN_TMPDIR} = $work;
$ENV{TAVRN_LIB} = $library;
$ENV{HOME} = $work;    # no site file of the user's
delete @ENV{qw(homeDrive homePath)};
$ENV{MESA_SHADER_CACHE_DISABLE} = 'true';

sub run {
    my @words = @_;
    my $begin = time;
    my $child = fork // die "fork: $!\n";
    if ($child == 0) {
        open STDOUT, '>', '/dev/null';
        open STDERR, '>', '/dev/null';
        exec { $words[0] } @words or POSIX::_exit(127);
    }
    waitpid $child, 0;
    die "@words: status $?\n" if $?;
    return (time - $begin) * 1000;
}

sub median {
    my ($work) = @_;
    my @times = sort { $a <=> $b } map { $work->() } 1 .. $runs;
    return $times[$runs / 2];
}

printf "version  %.1f ms\n", median(sub { run($batch, '--version') });

# A document of many boxes, made of one by merging it with itself.
my $boxes = 0;
my $many = "$work/many.tvn";
run($batch, '--quiet', (map { ('--add', 'Noise') } 1 .. 40), '--save', $many);
open my $file, '<', $many or die "$many: $!\n";
/^    opbox\r?$/ and $boxes++ while <$file>;
close $file;
my $noise = (glob "$library/menu/*/*.Noise")[0];
my $pairs = dirname($batch) . '/../bench/bench_Pairs';
my $pair = median(sub { my $time = `$pairs $boxes $library $noise $work`; die "$pairs failed\n" if $?; $time });
my $open = median(sub { run($batch, '--quiet', '--save', "$work/saved.tvn", $many) });
mkdir "$work/home" or die "$work/home: $!\n";
open my $site, '>', "$work/home/tavrn.def" or die "$work/home/tavrn.def: $!\n";
print $site "preprocess.pure 0\n";
close $site;
my $old = median(sub { local $ENV{HOME} = "$work/home"; run($batch, '--quiet', '--save', "$work/saved.tvn", $many) });
my $empty = median(sub { run($batch, '--quiet', '--save', "$work/saved.tvn") });
printf "open     %d boxes  %.1f ms  of it start and end %.1f ms  a run a box %.1f ms  floor of that (bare pairs) %.1f ms"
    . "  ratio %.3f\n", $boxes, $open, $empty, $old, $pair, ($old - $empty) / $pair;

my @size = ('--set', 'MRAY_SIZE=320,240');
my $opened = median(sub { run($batch, '--quiet', @size, '--save', "$work/marble.tvn", $marble) });
my $generated = median(sub { run($batch, '--quiet', @size, '--check', $marble) });
my $filtered = median(sub { run($batch, '--quiet', @size, '--save-shader', $marble) });
my $rendered = median(sub { run($batch, '--quiet', @size, '--render', $marble) });
my $kept = "$work/kept";
run($batch, '--quiet', @size, '--save-shader', '--keep-work', $kept, $marble);
my $compiled = median(sub {
    run('glslangValidator', '-G', '--auto-map-locations', '--auto-map-bindings', '-S', 'frag', '-o', "$work/x.spv",
        "$kept/marble");
});
printf "render   %.1f ms  of it start and end %.1f, open %.1f, generate %.1f, filter %.1f, compile %.1f, render %.1f"
    . "  (the driver's cache of compiled shaders is off)\n",
    $rendered, $empty, $opened - $empty, $generated - $opened, $filtered - $generated - $compiled, $compiled,
    $rendered - $filtered;
