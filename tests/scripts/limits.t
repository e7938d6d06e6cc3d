# SPDX-License-Identifier: Apache-2.0
# tavrin-batch and what its scripts may do: use time and memory, write, and outlive the program. TAVRIN_BATCH names
# the program.
use strict;
use warnings;
use File::Copy 'copy';
use File::Path 'make_path';
use File::Temp 'tempdir';
use FindBin;
use POSIX ();
use Test::More;

my $batch = $ENV{TAVRIN_BATCH} or plan skip_all => 'TAVRIN_BATCH does not name the program';
my $root = "$FindBin::Bin/../..";
my $dir = tempdir(CLEANUP => 1);
my $site = "$dir/installation";
make_path("$site/bin", "$site/tiny/bin", "$site/tiny/menu", "$dir/tmp", "$dir/home");
copy("$root/installation/bin/PerlExec", "$site/bin/PerlExec") or die;
copy("$root/installation/mray/bin/$_", "$site/tiny/bin/$_") or die for qw(redirect.pl spp);
copy("$root/tests/tiny/bin/codefilter", "$site/tiny/bin/codefilter") or die;
copy("$root/tests/tiny/tavrn.def", "$site/tiny/tavrn.def") or die;
chmod 0755, "$site/bin/PerlExec", glob "$site/tiny/bin/*";
%ENV = (PATH => $ENV{PATH}, HOME => "$dir/home", LANG => 'C', TAVRN_DIR => $site, TAVRN_LIB => '/tiny',
	TAVRN_TMPDIR => "$dir/tmp", map { $_ => $ENV{$_} } grep { /^(?:A|UB)SAN_OPTIONS$/ } keys %ENV);
chdir $dir or die;

sub put {
	my ($path, $text) = @_;
	open my $file, '>:raw', $path or die "$path: $!";
	print $file $text;
	close $file;
	chmod 0755, $path;
}

sub get {
	my ($path) = @_;
	open my $file, '<:raw', $path or return '';
	local $/;
	return <$file> // '';
}

sub wait_for {
	my ($test) = @_;
	for my $round (1 .. 9000) {
		return 1 if $test->();
		select undef, undef, undef, 0.01;
	}
	return 0;
}

# A process that nobody has waited for has ended all the same.
sub ended { return (get("/proc/$_[0]/stat") || ') Z ') =~ /\) Z / }

sub operator { put("$site/tiny/menu/0100.Paint", "output out { float out }\n") }
operator();
put('demo.tvn', "opdesk { opbox { filename Paint wid 1 } }\n");

# Starts the program in a process group of its own.
sub start {
	my (@words) = @_;
	my $pid = fork;
	if (!$pid) {
		setpgrp;
		open STDIN, '<', '/dev/null';
		open STDOUT, '>', "$dir/out";
		open STDERR, '>', "$dir/err";
		exec { $batch } $batch, @words or POSIX::_exit(126);
	}
	return $pid;
}

sub run {
	waitpid start(@_), 0;
	return $? & 127 ? 'signal ' . ($? & 127) : $? >> 8;
}

# ---- the program goes without a word

# A script that notes its number, has a child in a group of its own, and both want to stay. So does a viewer, which
# has gone its own way.
my $stays = <<'END';
#!/usr/bin/perl
$SIG{$_} = 'IGNORE' for qw(TERM INT HUP PIPE);
my $dir = $ENV{TAVRN_DIR} . '/..';
sub note { open my $f, '>', "$dir/$_[0].new"; print $f $$; close $f; rename "$dir/$_[0].new", "$dir/$_[0]"; }
if (!fork) { setpgrp; note('renderer'); sleep 1 while 1; }
if (!fork) { require POSIX; POSIX::setsid(); note('viewer'); close STDOUT; close STDERR; sleep 1 for 1 .. 600; exit; }
note('script');
sleep 1 while 1;
END

for my $case (['--render', 'renderit'], ['--save-shader', 'codefilter']) {
	my ($step, $script) = @$case;
	my $kept = get("$site/tiny/bin/$script");
	put("$site/tiny/bin/$script", $stays);
	for my $signal (qw(KILL SEGV ABRT)) {
		unlink map { "$dir/$_" } qw(script renderer viewer);
		my $program = start('demo.tvn', $step);
		ok(wait_for(sub { 3 == grep { -e "$dir/$_" } qw(script renderer viewer) }), "$script runs with what it starts");
		my %pid = map { $_ => get("$dir/$_") } qw(script renderer viewer);
		# As the end of a job does it, the whole group at once.
		kill $signal eq 'KILL' ? '-KILL' : $signal, $program;
		waitpid $program, 0;
		for my $who (qw(script renderer)) {
			ok(wait_for(sub { ended($pid{$who}) }), "SIG$signal ends the program: the $who ends")
				or kill 'KILL', $pid{$who};
		}
		ok(!ended($pid{viewer}), 'what has begun a session of its own stays');
		kill 'KILL', $pid{viewer};
	}
	put("$site/tiny/bin/$script", $kept);
}

# ---- limits

put("$site/tiny/bin/renderit", "#!/usr/bin/perl\n\$| = 1; print \"begun\\n\"; sleep 1 while 1;\n");
is(run('demo.tvn', '--time-limit', 1, '--render'), 1, 'a render that takes longer than --time-limit');
like(get('err'), qr/^ALERT: render 1 was stopped: it took more than 1 second, the limit of --time-limit$/m, 'by name');
put("$dir/tavrn.def", "limit.rendertime 1\nlimit.compiletime 1\n");
is(run('demo.tvn', '--quiet', '--render'), 1, 'the same by the site definitions');
is(get('err'), "ALERT: render 1 was stopped: it took more than 1 second, the limit of limit.rendertime in the site"
	. " definitions\nbegun\nscript ended with status 143\n", 'is told also to those who want it quiet');
put("$site/tiny/bin/codefilter", "#!/usr/bin/perl\nsleep 1 while 1;\n");
is(run('demo.tvn', '--quiet', '--save-shader'), 1, 'a filter that takes too long');
is(get('err'), "ALERT: codefilter was stopped: it took more than 1 second, the limit of limit.compiletime in the site"
	. " definitions\nsave shader command returned 143\n", 'is told');
copy("$root/tests/tiny/bin/codefilter", "$site/tiny/bin/codefilter") or die;

put("$dir/tavrn.def", "limit.memory 48\n");
put("$site/tiny/bin/renderit", "#!/usr/bin/perl\nif (!fork) { my \$x = 'x' x (\$ARGV[1] * 96 << 20); sleep 1 while 1; } wait;\n");
is(run('demo.tvn', '--quiet', '--render'), 1, 'a render that takes too much memory');
is(get('err'), "ALERT: render 1 (perl) was stopped: it took more than 48 MB of memory, the limit of limit.memory in the"
	. " site definitions\nscript ended with status 143\n", 'is told');

# ---- output

put("$dir/tavrn.def", "limit.output 1\n");
put("$site/tiny/bin/renderit", "#!/usr/bin/perl\nprint 'x' x 99, \"\\n\" for 1 .. 1_000_000; print \"the end\\n\";\n");
is(run('demo.tvn', '--render'), 0, 'a script that prints 100 MB');
like(get('err'), qr/^WARNING: \d+ bytes of output are left out here; limit\.output /m, 'has most of it left out');
like(get('err'), qr/^the end\n\z/m, 'and its end shown');
cmp_ok(-s 'err', '<', 1_100_000, 'and no more of it');
unlink "$dir/tavrn.def";

# Nobody reads what the program prints, so it does not take what the script prints: that waits.
put("$site/tiny/bin/renderit", <<'END');
#!/usr/bin/perl
for my $i (1 .. 300_000) {
	print 'x' x 99, "\n";
	if ($i % 1000 == 0) { open my $f, '>', "$ENV{TAVRN_DIR}/../written.new"; print $f $i; close $f;
		rename "$ENV{TAVRN_DIR}/../written.new", "$ENV{TAVRN_DIR}/../written"; }
}
END
{
	pipe my $reader, my $writer or die;
	my $program = fork;
	if (!$program) {
		open STDIN, '<', '/dev/null';
		open STDERR, '>&', $writer;
		exec { $batch } $batch, 'demo.tvn', '--render' or POSIX::_exit(126);
	}
	close $writer;
	my ($last, $same) = ('', 0);
	ok(wait_for(sub {
		my $now = get('written');
		$same = $now ne '' && $now eq $last ? $same + 1 : 0;
		$last = $now;
		return $same >= 50;
	}), 'a script waits where nobody takes its output');
	cmp_ok($last, '<', 200_000, 'before all of it is written');
	my ($peak) = get("/proc/$program/status") =~ /^VmHWM:\s+(\d+)/m;
	cmp_ok($peak, '<', 100_000, "and the program holds little of it ($peak kB)");
	my $size = 0;
	while (sysread $reader, my $piece, 65536) { $size += length $piece }
	waitpid $program, 0;
	is($?, 0, 'it goes on when somebody does');
	is($size, 30_000_000, 'and nothing is lost');
}

# ---- files that may not grow

{
	put('large.tvn', 'opdesk { ' . join(' ', map { "opbox { filename Paint wid $_ }" } 1 .. 300) . " }\n");
	put('old.tvn', "old\n");
	my $program = fork;
	if (!$program) {
		open STDERR, '>', "$dir/err";
		exec '/bin/sh', '-c', 'ulimit -f 8; exec "$0" large.tvn --save old.tvn', $batch or POSIX::_exit(126);
	}
	waitpid $program, 0;
	is($?, 1 << 8, 'a write beyond the limit of sizes is an error and no signal');
	like(get('err'), qr/^ALERT: .*old\.tvn.*: File too large$/m, 'which is told');
	is(get('old.tvn'), "old\n", 'and leaves the old file whole');
	is_deeply([glob '.old.tvn*'], [], 'and nothing beside it');
}

done_testing;
