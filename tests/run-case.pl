#!/usr/bin/perl
# SPDX-License-Identifier: Apache-2.0
# Runs one case. A case is a folder, in which may stand
#   command     the words behind `tavrin-batch`, read by the shell; each line is one run
#   environment lines NAME=VALUE; a NAME alone is taken out of the environment
#   setup       a Perl file run in the scratch folder before; it has slurp(PATH), spew(PATH, TEXT) and
#               skip(REASON), which ends the case as passed
#   unprivileged  (whatever is in it) where the tests run as root, this one does not
#   anything else   copied to the scratch folder, in which the program runs
# and what is expected:
#   status      the exit status, 0 if there is no such file; one line for all runs or one a run
#   stdout, stderr  what is printed, whole; nothing if there is no such file
#   stderr.has  lines that must occur in the errors in this order; used in place of `stderr`
#   expect/     files that must be in the scratch folder afterwards, byte by byte
#   expect.has/ files whose lines must occur in this order in the file of that name
#   absent      paths that must not be in the scratch folder afterwards
#   same        lines of two paths: two files that must hold the same bytes
#
# The program finds an installation in the scratch folder, with one library: tests/tiny, and the two scripts
# of `mray` that know no language. What a case has under installation/tiny is added or stands in its place;
# the user's home is home/. To use the installation of the program itself, a case takes TAVRN_DIR and
# TAVRN_LIB out of the environment.
#
# ${WORK} stands for the scratch folder, ${TMP} for the directory that work directories are made in, ${SOURCE}
# for the source tree, ${PID} for the number of a process. If there is more than one run, what each prints
# stands below a line "$ WORDS".
#
# With UPDATE_CASES=1 in the environment the expectations are written anew: read them before you keep them.
use strict;
use warnings;
use Cwd qw(abs_path);
use File::Basename qw(dirname);
use File::Copy qw(copy);
use File::Find qw(find);
use File::Path qw(make_path);
use File::Temp qw(tempdir);
use POSIX qw(setgid setuid);

# No run may hang, and none needs more than a few seconds; these leave room for slow builds and busy machines.
use constant { WALL_SECONDS => 60, CPU_SECONDS => 30 };
umask 022;    # a site file that a group can write is none of the user's own

my $case = abs_path($ARGV[0] // '') or die "usage: run-case.pl FOLDER\n";
my $source = abs_path(dirname(__FILE__) . '/..');
my $batch = $ENV{TAVRIN_BATCH} or die "TAVRIN_BATCH does not name the program\n";
my $update = $ENV{UPDATE_CASES};
my $work = abs_path(tempdir(CLEANUP => 1));
my $temporary = abs_path(tempdir(CLEANUP => 1));
my $output = tempdir(CLEANUP => 1);
my $unprivileged = $< == 0 && -e "$case/unprivileged";
my @problems;

sub slurp { my ($path) = @_; open my $f, '<:raw', $path or return undef; local $/; my $t = <$f>; return $t // ''; }
sub spew {
    my ($path, $text) = @_;
    make_path(dirname($path));
    open my $f, '>:raw', $path or die "$path: $!\n";
    print $f $text;
    close $f or die "$path: $!\n";
}
sub skip { chdir '/'; print "skipped: $_[0]\n"; exit 0; }

sub lines_of { return split /\n/, slurp("$case/$_[0]") // ''; }

sub filled {
    my ($text) = @_;
    $text =~ s/\$\{WORK\}/$work/g;
    $text =~ s/\$\{TMP\}/$temporary/g;
    $text =~ s/\$\{SOURCE\}/$source/g;
    return $text;
}

sub normal {
    my ($text) = @_;
    $text =~ s/\Q$work\E/\${WORK}/g;
    $text =~ s/\Q$temporary\E/\${TMP}/g;
    $text =~ s/\Q$source\E/\${SOURCE}/g;
    $text =~ s/tavrn\.\d+\.\w{8}\b/tavrn.\${PID}/g;
    return $text;
}

sub copy_tree {
    my ($from, $to, $skip) = @_;
    find({ no_chdir => 1, wanted => sub {
        my $relative = substr($File::Find::name, length $from);
        return if $skip && $relative =~ $skip;
        return make_path("$to$relative") if -d $File::Find::name;
        copy($File::Find::name, "$to$relative") or die "$File::Find::name: $!\n";
        chmod((stat $File::Find::name)[2] & 0755, "$to$relative");
    } }, $from);
}

sub compare {
    my ($what, $path, $got) = @_;
    my $expected = slurp($path) // '';
    return if $expected eq $got;
    if ($update) { $got eq '' ? unlink $path : spew($path, $got); return; }
    spew("$output/expected", $expected);
    spew("$output/got", $got);
    push @problems, "$what differs:\n" . `diff -au --label expected --label got '$output/expected' '$output/got'`;
}

sub compare_lines {
    my ($what, $got, @lines) = @_;
    my $from = 0;
    for my $line (@lines) {
        my $at = index($got, $line, $from);
        if ($at < 0) { push @problems, "$what lacks, in this place: $line\n--- got\n$got\n---"; return; }
        $from = $at + length $line;
    }
}

# Every expected file of a folder, with what the program left in its place.
sub each_expected {
    my ($folder, $check) = @_;
    return if !-d $folder;
    find({ no_chdir => 1, wanted => sub {
        return if !-f $File::Find::name;
        my $relative = substr($File::Find::name, 1 + length $folder);
        my $got = slurp("$work/$relative");
        return push @problems, "$relative was not made" if !defined $got;
        $check->($relative, $File::Find::name, normal($got));
    } }, $folder);
}

# The exit status of one run as a shell gives it; its output goes to the two files.
sub run {
    my ($words) = @_;
    my $child = fork;
    die "fork: $!\n" if !defined $child;
    if (!$child) {
        setpgrp;
        if ($unprivileged) { setgid(65534); setuid(65534); }
        exec '/bin/sh', '-c', "ulimit -t @{[CPU_SECONDS]}; exec '$batch' $words </dev/null >'$output/out' 2>'$output/err'";
        die "/bin/sh: $!\n";
    }
    my $hangs = 0;
    # The program is asked first, so that it ends its children too.
    local $SIG{ALRM} = sub { kill $hangs++ ? 'KILL' : 'TERM', -$child; alarm 5; };
    alarm WALL_SECONDS;
    1 while waitpid($child, 0) < 0 && $!{EINTR};
    my $ended = $?;
    alarm 0;
    push @problems, "`$words` did not end" if $hangs;
    return $ended & 127 ? 128 + ($ended & 127) : $ended >> 8;
}

copy_tree("$source/tests/tiny", "$work/installation/tiny");
make_path("$work/installation/bin", "$work/home");
for my $script (qw(bin/PerlExec tiny/bin/redirect.pl tiny/bin/spp)) {
    (my $original = $script) =~ s/^tiny/mray/;
    copy("$source/installation/$original", "$work/installation/$script") or die "$original: $!\n";
    chmod 0755, "$work/installation/$script";
}
copy_tree($case, $work,
    qr{^/(command|environment|setup|unprivileged|status|stdout|stderr(\.has)?|expect(\.has)?|absent|same)(/|$)});

my @runs = map { filled($_) } grep { /\S/ } lines_of('command') or die "$case: no command\n";
chdir $work or die "$work: $!\n";
%ENV = (PATH => $ENV{PATH}, HOME => "$work/home", LANG => 'C', TAVRN_DIR => "$work/installation", TAVRN_LIB => '/tiny',
        TAVRN_TMPDIR => $temporary, SOURCE_DATE_EPOCH => 1000000000,
        map { $_ => $ENV{$_} } grep { /^(ASAN_OPTIONS|UBSAN_OPTIONS|MRAY_RENDER)$/ } keys %ENV);
for (lines_of('environment')) {
    /^(\w+)(?:=(.*))?$/s or die "$case/environment: $_\n";
    if (defined $2) { $ENV{$1} = filled($2); } else { delete $ENV{$1}; }
}
if (-e "$case/setup") { defined(do "$case/setup") or die 'setup: ' . ($@ || $!) . "\n"; }
if ($unprivileged) {
    system('chown', '-Rh', '65534:65534', $work, $temporary, $output);
    system('/bin/sh', '-c', "exec perl -MPOSIX -e 'POSIX::setgid(65534); POSIX::setuid(65534); exit !-x shift' '$batch'")
        and skip("an unprivileged user cannot reach $batch");
}

my (@statuses, $printed, $errors);
for my $words (@runs) {
    my $title = @runs > 1 ? normal("\$ $words\n") : '';
    push @statuses, run($words);
    my @streams = map { normal(slurp("$output/$_") // '') } qw(out err);
    $printed .= $title . $streams[0] if @runs == 1 || $streams[0] ne '';
    $errors .= $title . $streams[1] if @runs == 1 || $streams[1] ne '';
}
my @expected = lines_of('status');
@expected = (0) if !@expected;
@expected = (@expected) x @runs if @expected == 1;
if ("@statuses" ne "@expected") {
    my %different = map { $_ => 1 } @statuses;
    if ($update) { spew("$case/status", join('', map { "$_\n" } keys %different > 1 ? @statuses : $statuses[0])); }
    else { push @problems, "status is @statuses, expected @expected; errors:\n" . ($errors // ''); }
}
compare('standard output', "$case/stdout", $printed // '');
if (-e "$case/stderr.has") { compare_lines('standard error', $errors // '', lines_of('stderr.has')); }
else { compare('standard error', "$case/stderr", $errors // ''); }
each_expected("$case/expect", sub { my ($name, $path, $got) = @_; compare($name, $path, $got); });
each_expected("$case/expect.has", sub {
    my ($name, $path, $got) = @_;
    compare_lines($name, $got, split /\n/, slurp($path));
});
for my $path (map { filled($_) } lines_of('absent')) {
    push @problems, "$path is there" if -e $path || -l $path;
}
for (lines_of('same')) {
    my ($one, $other) = map { slurp($_) } split;
    push @problems, "not the same: $_" if !defined $one || !defined $other || $one ne $other;
}
for my $root ($temporary, grep { -d && !-l } <$work/*>) {
    opendir my $left, $root or next;
    my @stale = grep { /^tavrn\.\d/ } readdir $left;
    push @problems, "the work directory was left behind: $root/@stale" if @stale;
}
chdir '/';
if (@problems) { print "$_\n" for @problems; exit 1; }
print "ok\n";
