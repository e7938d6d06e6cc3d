#!/usr/bin/perl
# Runs one case: a folder with
#   command   the words behind `tavrin-batch`, one line; ${WORK} stands for the scratch copy of the folder
#             in which it runs, ${SOURCE} for the source tree
#   status    the exit status expected (0 if there is no such file)
#   stdout, stderr      what must be printed, whole
#   stderr.has          lines each of which must occur in the errors
#   expect/   files that must be in the scratch folder afterwards, byte by byte
#   setup     a Perl file run in the scratch folder before
# In expected texts the scratch folder reads ${WORK} and the numbers of processes read ${PID}.
# With UPDATE_CASES=1 in the environment the expectations that exist are written anew.
use strict;
use warnings;
use Cwd qw(abs_path);
use File::Basename qw(dirname);
use File::Copy qw(copy);
use File::Find qw(find);
use File::Path qw(make_path);
use File::Temp qw(tempdir);

my $case = abs_path($ARGV[0]) or die "usage: run-case.pl FOLDER\n";
my $source = abs_path(dirname(__FILE__) . '/..');
my $batch = $ENV{TAVRIN_BATCH} or die "TAVRIN_BATCH does not name the program\n";
my $work = tempdir(CLEANUP => 1);
my @problems;

sub slurp { my ($path) = @_; open my $f, '<:raw', $path or return undef; local $/; my $t = <$f>; return $t // ''; }
sub spew { my ($path, $text) = @_; open my $f, '>:raw', $path or die "$path: $!\n"; print $f $text; close $f; }

sub normal {
    my ($text) = @_;
    $text =~ s/\Q$work\E/\${WORK}/g;
    $text =~ s/\Q$source\E/\${SOURCE}/g;
    $text =~ s/tavrn\.\d+/tavrn.\${PID}/g;
    return $text;
}

sub compare {
    my ($what, $path, $got) = @_;
    my $expected = slurp($path);
    return if !defined $expected || $expected eq $got;
    if ($ENV{UPDATE_CASES}) { spew($path, $got); return; }
    push @problems, "$what differs.\n--- expected\n$expected\n--- got\n$got\n---";
}

find({ no_chdir => 1, wanted => sub {
    my $relative = substr($File::Find::name, length $case);
    return if $relative eq '' || $relative =~ m{^/(command|status|stdout|stderr|stderr\.has|expect)(/|$)};
    if (-d $File::Find::name) { make_path("$work$relative"); } else { copy($File::Find::name, "$work$relative"); }
} }, $case);

chomp(my $command = slurp("$case/command") // die "$case: no command\n");
$command =~ s/\$\{WORK\}/$work/g;
$command =~ s/\$\{SOURCE\}/$source/g;
chdir $work or die "$work: $!\n";
my $temporary = tempdir(CLEANUP => 1);
%ENV = (PATH => $ENV{PATH}, HOME => $work, LANG => 'C', TAVRN_TMPDIR => $temporary, SOURCE_DATE_EPOCH => 1000000000,
        map { $_ => $ENV{$_} } grep { /^(UPDATE_CASES|ASAN_OPTIONS|UBSAN_OPTIONS|TAVRIN_BATCH|MRAY_RENDER)$/ } keys %ENV);
if (-e 'setup') { my $done = do './setup'; die "setup: " . ($@ || $!) . "\n" unless defined $done; unlink 'setup'; }

my $status = system("'$batch' $command >'$temporary/out' 2>'$temporary/err'");
$status = $status & 127 ? 128 + ($status & 127) : $status >> 8;
my $expectedStatus = slurp("$case/status") // 0;
chomp $expectedStatus;
my $errors = normal(slurp("$temporary/err"));
$errors =~ s/\Q$temporary\E/\${TMP}/g;
push @problems, "status is $status, expected $expectedStatus; errors:\n$errors" if $status != $expectedStatus;
my $output = normal(slurp("$temporary/out"));
$output =~ s/\Q$temporary\E/\${TMP}/g;
compare('standard output', "$case/stdout", $output);
compare('standard error', "$case/stderr", $errors);
for my $line (split /\n/, slurp("$case/stderr.has") // '') {
    push @problems, "standard error lacks: $line\n--- got\n$errors\n---" if index($errors, $line) < 0;
}
if (-d "$case/expect") {
    find({ no_chdir => 1, wanted => sub {
        return unless -f $File::Find::name;
        my $relative = substr($File::Find::name, length "$case/expect");
        my $got = slurp("$work$relative");
        if (!defined $got) { push @problems, "$relative was not made; errors:\n$errors"; return; }
        compare($relative, $File::Find::name, normal($got));
    } }, "$case/expect");
}
opendir my $left, $temporary;
my @stale = grep { /^tavrn\./ } readdir $left;
push @problems, "the work directory was left behind: @stale" if @stale;
if (@problems) { print "$_\n" for @problems; exit 1; }
print "ok\n";
